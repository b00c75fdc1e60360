#include "testcase/av/av_case.h"

#include <stdio.h>
#include <string.h>

#include "testcase/av/av_play.h"

bool AV_IsOnBoard(const AvSelector& selector) {
    return selector.feature == AV_ON_EVERY_BOARD || tcAVFeature[selector.feature] != 0;
}

static AvSource selectFrom(const AvSource& configured, const AvSelector& selector) {
    AvSource stSource = configured;
    stSource.eSource = selector.eSource;
    stSource.eVideoDev = QLX_VIDEODEV_NUMBER_0;
    stSource.eAudioDev = QLX_AUDIODEV_NUMBER_0;
    if (selector.eSource == AV_SOURCE_DTV) {
        stSource.eDTVTunerDev = selector.device;
        stSource.eDTVDemuxDev = selector.eDemuxDev;
    } else if (selector.eSource == AV_SOURCE_PVR) {
        stSource.eDTVDemuxDev = selector.device;
    } else if (selector.eSource == AV_SOURCE_ATV) {
        stSource.eATVTunerDev = selector.device;
    } else {
        stSource.uExtInPort = selector.device;
    }
    return stSource;
}

AvSource AV_SelectSource(const AvSelector& selector) {
    return selectFrom(zk_testConfig.av.stSource, selector);
}

AvSource AV_SelectManualSource(const AvSelector& selector) {
    return selectFrom(zk_mannualCaseConfig.av.stSource, selector);
}

AvBaseName AV_BaseNameOf(const char* variant) {
    const char* suffix = strrchr(variant, '_');
    AvBaseName name;
    snprintf(name.text, sizeof name.text, "%.*s_base", static_cast<int>(suffix - variant), variant);
    return name;
}
