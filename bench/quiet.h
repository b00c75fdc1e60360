/* Silence of the measured code: what it prints is not what is measured, nor what is shown. */
#ifndef BENCH_QUIET_H
#define BENCH_QUIET_H

#include <fcntl.h>
#include <stdio.h>
#include <unistd.h>

/** While it lives, standard output leads nowhere. */
class Quiet {
 public:
    Quiet() {
        fflush(stdout);
        console_ = dup(STDOUT_FILENO);
        int null = open("/dev/null", O_WRONLY | O_CLOEXEC);
        dup2(null, STDOUT_FILENO);
        close(null);
    }
    ~Quiet() {
        fflush(stdout);
        dup2(console_, STDOUT_FILENO);
        close(console_);
    }
    Quiet(const Quiet&) = delete;
    Quiet& operator=(const Quiet&) = delete;

 private:
    int console_;
};

#endif
