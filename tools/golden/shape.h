/* Lines of a record taken apart into what is said and the values in it. */
#ifndef TOOLS_GOLDEN_SHAPE_H
#define TOOLS_GOLDEN_SHAPE_H

#include <cstdint>
#include <string>
#include <vector>

/** Stands for a value in a shape. */
constexpr char valueSlot = '\1';

struct Shape {
    /** The line with a slot in the place of each value. */
    std::string text;
    std::vector<std::string> values;
};

/** Values are numbers that stand alone, decimal, with a fraction, or hexadecimal behind "0x", and
 *  courses of values in braces, as foldLines writes them. */
Shape shapeOf(const std::string& line);

/** FNV-1a of all values, kept apart from one another. */
uint32_t checksum(const std::vector<std::string>& values);

#endif
