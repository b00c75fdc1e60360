// Texts of reports and logs on their way into other forms: whatever bytes a case name or a console
// line holds, what comes out is UTF-8 that HTML, XML and JSON take.
#pragma once

#include <string>
#include <string_view>

namespace report {

/** Valid UTF-8 without control characters other than tabs and newlines: those show as their
 *  pictures (U+2400 on), bytes that are no UTF-8, non-characters and marks that change the
 *  direction of writing as U+FFFD. A carriage return at the end of a line is left out. */
std::string printable(std::string_view bytes);

/** The bytes without the terminal's control sequences (colours and others). */
std::string withoutColours(std::string_view bytes);

/** printable(), with the characters that mean something in HTML as entities. */
std::string html(std::string_view bytes);

/** Console lines as HTML: html(), and the terminal's colours as spans of the classes "c1" to "c6"
 *  (red, green, yellow, blue, magenta, cyan), "g1" to "g6" for backgrounds, and "b" for bold. */
std::string htmlOfConsole(std::string_view bytes);

/** Milliseconds as people read them: "850 ms", "12.3 s", "4 min 05 s", "2 h 03 min"; a dash for a
 *  negative number, which stands for unknown. */
std::string duration(long long milliseconds);

}  // namespace report
