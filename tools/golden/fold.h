/*
 * Folds the record of a case, so that a person can read it: what repeats is written once, with the
 * count of its repetitions and what changes between them.
 *
 *     x=388 {
 *       QLX_TunerSetParam(tuner=0 uFrequency={474000..861000/1000})=0
 *       +{200}QLX_TunerGetLockStatus(tuner=0)=0 out=1
 *     }
 *
 * A number that grows evenly over the repetitions is written as {first..last/step}, few values are
 * listed, and of many the first, the last and a checksum of all stand there: {3..17 #1f2e3d4c}. So
 * two records with the same folded text are the same but for a collision of checksums.
 */
#ifndef TOOLS_GOLDEN_FOLD_H
#define TOOLS_GOLDEN_FOLD_H

#include <string>
#include <vector>

/** The folded form of `lines`, a line each. */
std::vector<std::string> foldLines(const std::vector<std::string>& lines);

#endif
