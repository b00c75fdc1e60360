#include "framework/monitor.h"

#include <fcntl.h>
#include <stdlib.h>
#include <string.h>
#include <unistd.h>

#include "framework/base/zk_log.h"
#include "framework/instance.h"

static const char messageAlive = '1';
static const char messageOver = '2';

/** Silent polls, one a second, before the first one that reboots. */
enum { PATIENCE_POLLS = 300 };

static void writeMessage(char message) {
    // Without a monitor the write ends the process by the system's default action, so a result
    // other than one byte has no cause that could be mended here.
    ssize_t written = write(tcFwInstance.pipeFd[1], &message, 1);
    (void)written;
}

void monitorAlive(void) {
    writeMessage(messageAlive);
}

void monitorRunIsOver(void) {
    sleep(1);
    writeMessage(messageOver);
}

/** One silent poll, the first of a row being number 0. */
static void countSilence(int silentPolls) {
    if (silentPolls == 0)
        zk_log(
            "mornitor proc can't get any response form main test proc, start the cutdown (5 "
            "mins) for reboot system \r\n");
    if (silentPolls < PATIENCE_POLLS)
        return;
    zk_log(
        "mornitor proc can't get any response form main test proc in 5 mins, reboot system "
        "\r\n");
    zk_log("reboot cmd: %s \r\n", tcFwInstance.rebootCmd);
    zk_logFlush();
    int result = system(tcFwInstance.rebootCmd);
    (void)result;
}

void runMornitorProc(void) {
    int readEnd = tcFwInstance.pipeFd[0];
    int silentPolls = 0;
    close(tcFwInstance.pipeFd[1]);
    fcntl(readEnd, F_SETFL, O_NONBLOCK);
    for (;;) {
        char bytes[100] = "";
        ssize_t got = read(readEnd, bytes, sizeof bytes);
        if (got > 0) {
            if (silentPolls != 0) {
                silentPolls = 0;
                zk_log(
                    "mornitor proc receive response form main test proc again, stop the cutdown "
                    "for reboot system \r\n");
            }
            if (memchr(bytes, messageOver, static_cast<size_t>(got)) != nullptr)
                break;
        } else {
            countSilence(silentPolls);
            silentPolls++;
        }
        sleep(1);
    }
    zk_log(
        "mornitor proc receive the message that all the cases has been tested, mornitor proc "
        "will quit \r\n");
    exit(0);
}
