/*
 * Configuration files: sections in square brackets with KEY=VALUE lines.
 *
 * Every read opens its file, scans it from the top and closes it, so that an edit counts at once
 * and the first match in the file decides. The _self readers fall back on one fixed file,
 * "config/common_config.cfg", so that a platform's file need only hold what differs.
 *
 * A byte order mark of UTF-8 in front of the first line is passed over. What is no regular file (a
 * folder, a named pipe, a device) reads as a file that is missing.
 *
 * A line is at most 1022 characters, a longer one reads as several. A line is a comment when its
 * first character is '#'. There are no quotes and no escapes; section and key match in their exact
 * case. Section, key and value hold at most CONF_TEXT_SIZE - 1 characters, the rest is cut.
 *
 * The readers keep no state and may be called from any thread.
 */
#ifndef ENVIRONMENT_CONF_READER_H
#define ENVIRONMENT_CONF_READER_H

#include <stdint.h>

enum { CONF_TEXT_SIZE = 100 };

/** One line taken apart. The section outlives the line: it holds until the next header. */
struct ConfItem {
    char section[CONF_TEXT_SIZE];
    char key[CONF_TEXT_SIZE];
    char value[CONF_TEXT_SIZE];
};

/** Removes newlines, carriage returns and blanks from the end. Returns s. */
char* strtrimr(char* s);
/** Removes all white space from the start. Returns s. */
char* strtriml(char* s);
/** Both of these. Returns s. */
char* strtrim(char* s);
/** Brings a line to its normal form: "key=value", or without any white space when it has no '='.
 *  Returns s. */
char* delspace(char* s);

enum ConfLine {
    CONF_LINE_ITEM = 0,
    CONF_LINE_EMPTY = 1,
    CONF_LINE_COMMENT = 2,
};

/**
 * Takes a line apart (and changes it on the way).
 * @param line  the line, at most 1023 characters
 * @param item  receives section, or key and value; a word without '=' counts as an empty line
 * @return ConfLine
 */
int32_t get_item_from_line(char* line, ConfItem* item);

/**
 * Scans a file for a key.
 * @param value  receives the text, CONF_TEXT_SIZE bytes; left alone when nothing is found
 * @return 0 found, 1 not found or file not readable
 */
int32_t read_conf_value(const char* section, const char* key, char* value, const char* path);

/** Text from "config/common_config.cfg" into CONF_TEXT_SIZE bytes; prints it. 0 found, 1 not. */
int32_t get_conf_sting(const char* section, const char* key, char* value);
/** Number from "config/common_config.cfg": decimal, 0x hexadecimal, leading 0 octal; 0 when it is
 *  missing or none. Prints it when found. 0 found, 1 not. */
int32_t get_conf_value(const char* section, const char* key, int32_t* value);

/** The same from `path`, or where that has no such key from "config/common_config.cfg". Prints what
 *  was found. 0 found, 1 in neither. */
int32_t get_conf_sting_self(const char* section, const char* key, char* value, const char* path);
int32_t get_conf_value_self(const char* section, const char* key, int32_t* value, const char* path);

#endif
