#include "framework/platform_select.h"

#include <stdio.h>

#include "framework/base/zk_log.h"
#include "framework/console_input.h"

int32_t select_platform(ConfigFiles* files, int32_t* index) {
    puts("Index    Module Name         Module Description \r");
    for (int32_t i = 1; config_platformMenuLine(i) != nullptr; i++)
        puts(config_platformMenuLine(i));
    puts("Please input index to select platfrom. 'q' for quit\r");
    zk_logFlush();
    getinputIndex(index);
    if (*index == INPUT_QUIT)
        return -1;
    set_platform(files, index);
    return 0;
}
