/* The ways to torture a case: what of its record is changed, and how. */
#ifndef TOOLS_TORTURE_STEP_H
#define TOOLS_TORTURE_STEP_H

#include <string>
#include <vector>

namespace torture {

/** One fault that a case is run under. */
struct Step {
    /** Function or callback. */
    std::string name;
    /** Of a callback: whose it is, as "filter=2"; what comes first of two of them is chance. */
    std::string source;
    /** Which of those with its source, from 1; 0: each of them. */
    unsigned nth;
    /** Of single calls "refuse", "accept", "garble", and of single callbacks "drop", "garble". Of
     * all calls and callbacks of a name "flip", "zero", "less" of members, and "repeat". */
    std::string kind;
    /** What is flipped, made zero, or lessened by one. */
    std::vector<std::string> members;

    /** As the report names it: "QLX_GPIOGetValue#2 refuse", "QLX_TunerGetSignalInfo flip uSnr". */
    std::string text() const;
    /** The fault's line. `blank` garbles with zeros: where any value but none will do. */
    std::string fault(const std::string& caseName, bool blank) const;
};

/** The steps of single calls and callbacks that the record of a case's run offers, as
 *  qlx_sim_recorded tells it. A function that is called often is tortured at its first calls, at
 *  each power of two, and at the last. */
std::vector<Step> planOf(const std::string& record);

/** What the calls or callbacks of a name hand out. */
struct HandedOut {
    std::string name;
    /** Members of values; of those that were once not zero, which. */
    std::vector<std::string> values;
    std::vector<std::string> notZero;
    /** Handles, lengths, counts. */
    std::vector<std::string> marks;
};

/** What a case was handed out, as qlx_sim_handed_out tells it. */
std::vector<HandedOut> handedOutOf(const std::string& lines);

/** The names of the callbacks in a record. */
std::vector<std::string> callbacksOf(const std::string& record);

/** Whether a refusal of this call leaves open what it would have ended: nobody could end it then.
 */
bool isUndo(const std::string& function);

}  // namespace torture

#endif
