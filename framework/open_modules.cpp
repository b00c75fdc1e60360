// Modules whose cases are not built yet: their records stand in the table with their names, and
// without a case. A module leaves this list when its own file defines its record.
#include "framework/modules.h"

#define OPEN_MODULE(record, name, description)                                \
    const TcModule record = {nullptr, nullptr, nullptr,     nullptr, nullptr, \
                             0,       name,    description, nullptr};

// clang-format off
OPEN_MODULE(RecordModule, "Record", "Test module for the Record")
OPEN_MODULE(DmxInjectModule, "DmxInject", "Test module for the DemuxInject")
OPEN_MODULE(AVCommonModule, "AV-Common", "Test module for AV common test, no distinguishing source")
OPEN_MODULE(AVAtvModule, "AV-ATV", "Test module for AV test, the source is ATV")
OPEN_MODULE(AVPvrModule, "AV-PVR", "Test module for AV test, the source is PVR")
OPEN_MODULE(AVCvbsModule, "AV-CVBS", "Test module for AV test, the source is CVBS")
OPEN_MODULE(AVHdmiModule, "AV-HDMI", "Test module for AV test, the source is HDMI")
OPEN_MODULE(AVYpbprModule, "AV-YPBPR", "Test module for AV test, the source is YPBPR")
OPEN_MODULE(AVDtvVideoCcModule, "AV-VideoCC", "Test module for video CC")
OPEN_MODULE(AFEModule, "AFE", "Test module for the ATV ")
OPEN_MODULE(AOutModule, "AOUT", "Test module for the AOUT")
OPEN_MODULE(VOutModulePrimary, "VOUT-Primary", "Test cases of VOUT for primary interface")
OPEN_MODULE(VOutModuleAdvance, "VOUT-Advanced", "Test cases of VOUT for advanced function")
OPEN_MODULE(DisplayModule, "DISPLAY", "Test module for the display")
OPEN_MODULE(LocalDimmingModule, "LOCALDIMMING", "Test module for the localdimming")
OPEN_MODULE(MHLModule, "MHL", "Test module for the MHL")
OPEN_MODULE(ExtInModule, "EXTIN", "Test module for the ExtIn")
OPEN_MODULE(ThreeDModule, "3D", "Test module for the 3D setting")
OPEN_MODULE(IntegrationModule, "INTEGRATION", "Test module for Integration")
OPEN_MODULE(CIModule, "CI", "Test module for the CI")
OPEN_MODULE(CECModule, "CEC", "Test module for the CEC")
OPEN_MODULE(VBIModule, "VBI", "Test module for the VBI ")
OPEN_MODULE(StreamModule, "STREAMINJECT", "Test module for the stream inject")
OPEN_MODULE(SMCModule, "Smartcard", "Test module for the smartcard")
OPEN_MODULE(DescramblerModule, "DESCRAMBLER", "Test module for the descrambler")
OPEN_MODULE(LocalPlayerVideoModule, "LOCALPLAYER_VIDEO", "Test module for the local multimedia player video play")
OPEN_MODULE(LocalPlayerAudioModule, "LOCALPLAYER_AUDIO", "Test module for the local multimedia player audio play")
OPEN_MODULE(LocalPlayerImageModule, "LOCALPLAYER_IMAGE", "Test module for the local multimedia player image play")
OPEN_MODULE(TTSModule, "TTS", "Test module for the tts")
OPEN_MODULE(ASCAPModule, "ASCAP", "Test module for the ascap")
OPEN_MODULE(OSDModule, "OSD", "Test module for the OSD")
// clang-format on

// The module that has a parameter file for its manual cases.
const TcModule AVDtvModule = {nullptr,
                              nullptr,
                              nullptr,
                              nullptr,
                              nullptr,
                              0,
                              "AV-DTV",
                              "Test module for AV test, the source is DTV",
                              "config/common/AVDtvModule.cfg"};
