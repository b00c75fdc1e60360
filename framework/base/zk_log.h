/*
 * The one way to write a line with a time stamp on the console.
 *
 * The console is the log of a run, so a line must be out before whatever comes next can crash:
 * standard output is line-buffered whatever it leads to (see zk_logInit), and text that ends
 * without a newline is followed by zk_logFlush.
 */
#ifndef FRAMEWORK_BASE_ZK_LOG_H
#define FRAMEWORK_BASE_ZK_LOG_H

#define ZK_PRINTF(text, first) __attribute__((format(printf, text, first)))

/** Makes standard output line-buffered, also when it is a file or a pipe. Called first in main. */
void zk_logInit(void);

/**
 * Prints "[seconds.microseconds]" of the monotonic clock and behind it the message as printf does.
 * Any thread may call; a message is never torn by that of another thread.
 */
void zk_log(const char* format, ...) ZK_PRINTF(1, 2);

/** Writes out what has been printed so far: before a fork, a shell command, or a wait for input. */
void zk_logFlush(void);

#endif
