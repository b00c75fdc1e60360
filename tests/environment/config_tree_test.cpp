// The shipped configuration tree, checked as a whole.
//
// The program reads a missing or misspelled key as 0 and says nothing, so a slip in a file shows
// only as a case that fails on a bench. Here every file is held against the list of keys that it
// must have, neither more nor less, and the files are held against one another: indexes that one
// file keeps into another, formats that an index promises, transmitters that may not overlap.

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <set>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

namespace {

using Strings = std::vector<std::string>;

// Integers are read through a buffer of 50 characters, and a line's value field holds 99.
constexpr size_t kMaxIntegerText = 49;
constexpr size_t kMaxLine = 1022;
constexpr long kMaxPid = 8191;

// A file in memory: section, key, value. The order of the lines plays no part in these tests.
using Section = std::map<std::string, std::string>;
struct ConfigFile {
    std::map<std::string, Section> sections;
    Strings faults;
};

// ---- Strict reading -----------------------------------------------------------------------------

std::string at_line(size_t number, const std::string& what, const std::string& text) {
    return "line " + std::to_string(number) + ": " + what + ": " + text;
}

// Takes one line that is no comment and not empty. The form is stricter than the program's reader:
// no blanks around names, so that a file looks the same everywhere.
void read_line(size_t number, const std::string& line, std::string* section, ConfigFile* file) {
    if (line.front() == '[') {
        if (line.back() != ']' || line.size() < 3 || line.find(' ') != std::string::npos) {
            file->faults.push_back(at_line(number, "bad section header", line));
            return;
        }
        *section = line.substr(1, line.size() - 2);
        if (!file->sections.emplace(*section, Section()).second) {
            file->faults.push_back(at_line(number, "section repeated", line));
        }
        return;
    }
    const size_t equals = line.find('=');
    if (equals == std::string::npos || equals == 0 || equals + 1 == line.size() ||
        line.find('=', equals + 1) != std::string::npos || line.find(' ') != std::string::npos) {
        file->faults.push_back(at_line(number, "not KEY=VALUE", line));
        return;
    }
    if (section->empty()) {
        file->faults.push_back(at_line(number, "key before the first section", line));
        return;
    }
    if (!file->sections[*section].emplace(line.substr(0, equals), line.substr(equals + 1)).second) {
        file->faults.push_back(at_line(number, "key repeated", line));
    }
}

ConfigFile parse(const std::string& text) {
    ConfigFile file;
    if (text.empty() || text.front() != '#') {
        file.faults.push_back("does not open with a comment");
    }
    if (text.empty() || text.back() != '\n') {
        file.faults.push_back("does not end with a newline");
    }
    std::istringstream in(text);
    std::string line;
    std::string section;
    for (size_t number = 1; std::getline(in, line); ++number) {
        const bool printable =
            std::all_of(line.begin(), line.end(), [](char c) { return c >= ' ' && c <= '~'; });
        if (!printable || line.size() > kMaxLine) {
            file.faults.push_back(at_line(number, "control, foreign or too many characters", line));
        } else if (!line.empty() && line.front() != '#') {
            read_line(number, line, &section, &file);
        }
    }
    return file;
}

// ---- What each file must hold -------------------------------------------------------------------

// A Bit is an integer with exactly one bit set, as most of the library's enumerations have it.
enum class Kind { Integer, Bit, Text, Address };

struct Rule {
    std::string section;  // "CHANNEL%d" stands for as many as COMMON/CHANNEL_NUM says
    std::string key;      // "AUDIO_PID%d" stands for as many as the key `count` of the section says
    long min;             // of an integer; of a text, the least and greatest length
    long max;
    Kind kind = Kind::Integer;
    std::string count = "";  // key of the section that says how many "%d" of `key` there are
};
using Rules = std::vector<Rule>;

long integer(const std::string& text) {
    return std::strtol(text.c_str(), nullptr, 0);
}

bool is_integer(const std::string& text) {
    char* end = nullptr;
    const long value = std::strtol(text.c_str(), &end, 0);
    return *end == '\0' && value >= INT32_MIN && value <= INT32_MAX;
}

long value_or_zero(const ConfigFile& file, const std::string& section, const std::string& key) {
    const auto s = file.sections.find(section);
    if (s == file.sections.end()) {
        return 0;
    }
    const auto k = s->second.find(key);
    return k == s->second.end() ? 0 : integer(k->second);
}

// The names that a pattern stands for: one for each number below `count`, or itself without "%d".
Strings expand(const std::string& pattern, long count) {
    const size_t mark = pattern.find("%d");
    if (mark == std::string::npos) {
        return {pattern};
    }
    Strings names;
    for (long i = 0; i < std::min(count, 1000L); ++i) {
        names.push_back(pattern.substr(0, mark) + std::to_string(i) + pattern.substr(mark + 2));
    }
    return names;
}

std::string value_fault(const Rule& rule, const std::string& value) {
    const long size = static_cast<long>(value.size());
    if (rule.kind == Kind::Text) {
        return size >= rule.min && size <= rule.max ? "" : "bad length";
    }
    if (rule.kind == Kind::Address) {
        unsigned b[4];
        char rest;
        const int n =
            std::sscanf(value.c_str(), "%3u.%3u.%3u.%3u%c", &b[0], &b[1], &b[2], &b[3], &rest);
        return n == 4 && *std::max_element(b, b + 4) <= 255 ? "" : "not an IPv4 address";
    }
    if (value.size() > kMaxIntegerText) {
        return "value too long";
    }
    if (!is_integer(value)) {
        return "not an integer";
    }
    if (value.size() > 1 && value[0] == '0' && value[1] != 'x') {
        return "octal";
    }
    const long number = integer(value);
    if (rule.kind == Kind::Bit && (number & (number - 1)) != 0) {
        return "not one of the enumerated values";
    }
    return number >= rule.min && number <= rule.max ? "" : "out of range";
}

// What is wrong with a file against its rules: keys missing, keys unknown, values out of range.
Strings faults_against(const Rules& rules, const ConfigFile& file) {
    Strings faults = file.faults;
    std::set<std::pair<std::string, std::string>> known;
    for (const Rule& rule : rules) {
        const long sections =
            rule.section == "TUNERDEV%d" ? 4 : value_or_zero(file, "COMMON", "CHANNEL_NUM");
        for (const std::string& section : expand(rule.section, sections)) {
            const long keys = value_or_zero(file, section, rule.count);
            for (const std::string& key : expand(rule.key, keys)) {
                known.emplace(section, key);
                const auto s = file.sections.find(section);
                if (s == file.sections.end() || s->second.count(key) == 0) {
                    faults.push_back("[" + section + "]" + key + ": missing");
                    continue;
                }
                const std::string fault = value_fault(rule, s->second.at(key));
                if (!fault.empty()) {
                    faults.push_back("[" + section + "]" + key + ": " + fault);
                }
            }
        }
    }
    for (const auto& [section, keys] : file.sections) {
        for (const auto& item : keys) {
            if (known.count({section, item.first}) == 0) {
                faults.push_back("[" + section + "]" + item.first + ": unknown");
            }
        }
    }
    return faults;
}

enum ChannelKeys : unsigned { kFrequency = 1, kTsId = 2, kStreamId = 4, kPesPid = 8 };

Rules channel_rules(unsigned optional) {
    Rules rules = {
        {"COMMON", "CHANNEL_NUM", 1, 100},
        {"CHANNEL%d", "VIDEO_PID", 1, kMaxPid},
        {"CHANNEL%d", "VIDEO_FORMAT", 1, 32, Kind::Bit},
        {"CHANNEL%d", "PCR_PID", 1, kMaxPid},
        {"CHANNEL%d", "AUDIO_NUM", 1, 16},
        {"CHANNEL%d", "AUDIO_PID%d", 1, kMaxPid, Kind::Integer, "AUDIO_NUM"},
        {"CHANNEL%d", "AUDIO_FORMAT%d", 1, 2097152, Kind::Bit, "AUDIO_NUM"},
        {"CHANNEL%d", "AUDIODESC_NUM", 0, 16},
        {"CHANNEL%d", "AUDIODESC_PID%d", 1, kMaxPid, Kind::Integer, "AUDIODESC_NUM"},
        {"CHANNEL%d", "AUDIODESC_FORMAT%d", 1, 2097152, Kind::Bit, "AUDIODESC_NUM"},
        {"CHANNEL%d", "SUBTITLE_NUM", 0, 16},
        {"CHANNEL%d", "SUBTITLE_PID%d", 1, kMaxPid, Kind::Integer, "SUBTITLE_NUM"},
        {"CHANNEL%d", "OTHER_NUM", 0, 16},
        {"CHANNEL%d", "OTHER_PID%d", 1, kMaxPid, Kind::Integer, "OTHER_NUM"},
        {"CHANNEL%d", "PMT_PID", 1, kMaxPid},
        {"CHANNEL%d", "EIT_PID", 0, kMaxPid},
        {"CHANNEL%d", "ETT_PID", 0, kMaxPid},
    };
    if (optional & kFrequency) {
        rules.push_back({"CHANNEL%d", "FREQUENCY", 40000, 3300000});
    }
    if (optional & kTsId) {
        rules.push_back({"CHANNEL%d", "TS_ID", 1, 0xFFFF});
    }
    if (optional & kStreamId) {
        rules.push_back({"CHANNEL%d", "STREAM_ID", 1, 0xFFFF});
    }
    if (optional & kPesPid) {
        rules.push_back({"CHANNEL%d", "PES_PID", 1, kMaxPid});
    }
    return rules;
}

Rules frequency_only_rules() {
    return {{"COMMON", "CHANNEL_NUM", 1, 100}, {"CHANNEL%d", "FREQUENCY", 40000, 3300000}};
}

const Strings kStandards = {"DVB-C", "DVB-T", "DVB-S", "ATSC-T", "ATSC-C", "ISDB-T", "ISDB-S"};

Rules av_rules() {
    Rules rules = {
        {"COMMON", "AV_SOURCE", 1, 17},      {"COMMON", "AV_VIDEO_DEV_ID", 0, 3},
        {"COMMON", "AV_AUDIO_DEV_ID", 0, 3}, {"DTV", "AV_DTV_TUNER_ID", 0, 3},
        {"DTV", "AV_DTV_DEMUX_ID", 0, 3},    {"DTV", "AV_DTV_CHANNEL_ID", 0, 99},
        {"ATV", "AV_ATV_TUNER_ID", 0, 3},    {"ATV", "AV_ATV_CHANNEL_ID", 0, 99},
        {"EXTIN", "AV_EXTIN_PORT_ID", 0, 2}, {"PVR-PLAYBACK", "AV_PVR_PLAYBACK_CHANNEL_ID", 0, 99},
    };
    for (const std::string& standard : kStandards) {
        rules.push_back({standard, "AV_VIDEO_MPEG2_CHANNEL_ID", 0, 99});
        rules.push_back({standard, "AV_VIDEO_H264_CHANNEL_ID", 0, 99});
    }
    for (const char* standard : {"DVB-C", "DVB-T", "DVB-S"}) {
        rules.push_back({standard, "AV_AUDIODESC_CHANNEL_ID", 0, 99});
    }
    for (const char* standard : {"ATSC-T", "ATSC-C"}) {
        rules.push_back({standard, "AV_VIDEOCC_CHANNEL_ID", 0, 99});
        rules.push_back({standard, "AV_AUDIO_AC3_CHANNEL_ID", 0, 99});
    }
    return rules;
}

Rules pvr_rules() {
    Rules rules = {
        {"RECODER", "PVR_RCD_STORE_DIR", 2, 49, Kind::Text},
        {"RECODER", "PVR_RCD_STORE_DISK_DIR", 2, 49, Kind::Text},
        {"RECODER", "PVR_RCD_TRANSMISSIONSYSTEM", 1, 1024},
        {"DMXINJECT", "PVR_INJECT_RCD_SD_TS_FILE", 1, 49, Kind::Text},
        {"DMXINJECT", "PVR_INJECT_RCD_HD_TS_FILE", 1, 49, Kind::Text},
        {"DMXINJECT", "PVR_INJECT_RCD_MULTI_TS_FILE", 1, 49, Kind::Text},
        {"DMXINJECT", "PVR_INJECT_BYTE_UNALIGN_TS_FILE", 1, 49, Kind::Text},
    };
    for (const char* standard : {"DVBT", "DVBS", "DVBC", "ISDBT", "ISDBS"}) {
        const std::string stem = std::string("PVR_RCD_") + standard + "_PATH";
        rules.push_back({"RECODER", stem + "_NUM", 0, 4});
        rules.push_back({"RECODER", stem + "%d_SWITCH", 0, 1, Kind::Integer, stem + "_NUM"});
        rules.push_back({"RECODER", stem + "%d_CHANNEL", 0, 99, Kind::Integer, stem + "_NUM"});
    }
    return rules;
}

Rules demux_rules() {
    Rules rules = {
        {"COMMON", "DEMUX_TS_FILE_PATH", 2, 49, Kind::Text},
        {"COMMON", "DEMUX_INVALID_PID", 1, kMaxPid},
        {"COMMON", "DEMUX_INVALID_TABLE_ID", 1, 254},
        {"ATSC-T3", "ALP_IP_NUM", 1, 4},
        {"ATSC-T3", "ALP_IP_%d_SRC_ADDR", 0, 0, Kind::Address, "ALP_IP_NUM"},
        {"ATSC-T3", "ALP_IP_%d_SRC_PORT", 1, 65535, Kind::Integer, "ALP_IP_NUM"},
        {"ATSC-T3", "ALP_IP_%d_DST_ADDR", 0, 0, Kind::Address, "ALP_IP_NUM"},
        {"ATSC-T3", "ALP_IP_%d_DST_PORT", 1, 65535, Kind::Integer, "ALP_IP_NUM"},
    };
    for (const std::string& standard : kStandards) {
        rules.push_back({standard, "TS_FILE_NUM", 1, 100});
        rules.push_back({standard, "TS_FILE_%d", 1, 49, Kind::Text, "TS_FILE_NUM"});
        rules.push_back({standard, "TS_FILE_%d_CHANNEL_ID", 0, 99, Kind::Integer, "TS_FILE_NUM"});
    }
    return rules;
}

Rules stream_inject_rules() {
    Rules rules;
    for (const char* key :
         {"VIDEO_ES_FILE_NAME", "AUDIO_ES_FILE_NAME", "TS_FILE_NAME", "VIDEO_ES_FILE_NAME_SUB",
          "AUDIO_ES_FILE_NAME_SUB", "VIDEO_ES_FILE_NAME_VR360", "AUDIO_ES_FILE_NAME_VR360"}) {
        rules.push_back({"COMMON", key, 1, 49, Kind::Text});
    }
    return rules;
}

// The manual cases of module AV-DTV.
Rules av_dtv_rules() {
    // clang-format off
    const char* const kCases[] = {
        "Play_001", "Play_002", "Play_003", "Play_004", "Play_005", "Play_006", "Play_007",
        "Play_008", "Play_009", "PauseResume_001", "SetAudioMode_002", "Get4KHDRVideoInfo_002",
        "Get4KHDRVideoInfo_003", "Get4KHDRVideoInfo_004", "Ac4AudioPreselectionV1_Manual_001",
        "Ac4AudioDescVolumeV1_Manual_001", "Ac4AudioPreselectionV2_Manual_001",
        "Ac4AudioDescVolumeV2_Manual_001", "Ac4AudioPreselectionV1_Manual_002",
        "Ac4AudioPreselectionV2_Manual_SwitchLanguage", "CheckVideoFrameWidthAndFrameHeight_001",
        "CheckVideoFrameWidthAndFrameHeight_002", "CheckVideoFormatInterlacedAndFrameRate_001",
        "CheckVideoFormatInterlacedAndFrameRate_002", "CheckVideoInfoOfColorPrimariesType_001",
        "CheckVideoInfoOfAFDType_001", "CheckVideoInfoOfSupportOverscan_001",
        "CheckVideoInfoOfAspectRatio_001", "CheckVideoInfoOfAspectRatio_002", "CheckAudio5_1Info",
        "CheckAudioFormat_LfePresent_001"};
    // clang-format on
    Rules rules;
    for (const char* name : kCases) {
        rules.push_back({std::string("TC_AV_Dtv") + name, "U_DTV_CHANNEL_ID", 0, 99});
    }
    return rules;
}

Rules board_rules() {
    return {
        {"COMMON", "COMMON_TEST_REPORT_FILE", 1, 199, Kind::Text},
        {"COMMON", "COMMON_CHECKLIST_FILE", 1, 199, Kind::Text},
        {"COMMON", "COMMON_REBOOT_CMD", 1, 49, Kind::Text},
        {"GPIO", "GPIO_NUM", 0, 255},
        {"IIC", "IIC_DEV_BUS_ID", 0, 3},
        {"IIC", "IIC_DEV_BUS_RATE", 0, 3},
        {"IIC", "IIC_DEV_ADDR", 0x08, 0x77},
        {"IIC", "IIC_DEV_REG_ADDR_LEN", 1, 4},
        {"IIC", "IIC_DEV_REG_ADDR", 0, INT32_MAX},
        {"IIC", "IIC_DEV_DATA_WRITE_LEN", 0, 4},
        {"IIC", "IIC_DEV_DATA_WRITE_BUF", 0, INT32_MAX},
        {"AMP", "AMP_CHIP_NAME", 0, 5},
        {"AMP", "AMP_GPIO_RESET", 0, 255},
        {"AMP", "AMP_I2C_ADDR", 0, 0x77},
        {"AMP", "AMP_GPIO_MUTE", 0, 255},
        {"AOUT", "AOUT_SINK_SPEAKER", 0, 1},
        {"AOUT", "AOUT_SINK_HEADPHONE", 0, 1},
        {"AOUT", "AOUT_SINK_SPDIF", 0, 1},
        {"AOUT", "AOUT_SINK_LINEOUT", 0, 1},
        {"AOUT", "AOUT_SINK_HDMI", 0, 1},
        {"AOUT", "AOUT_SINK_BT", 0, 1},
        {"AOUT", "AOUT_GPIO_HP_DETECT", 0, 255},
    };
}

// clang-format off
const Strings kFeatures = {
    "GPIO", "I2C_BUS0", "I2C_BUS1", "I2C_BUS2", "I2C_BUS3", "I2C_BUS_SLOW", "I2C_BUS_NORMAL",
    "I2C_BUS_MIDDLE", "I2C_BUS_FAST", "PAT_TABLE", "CAT_TABLE", "PMT_TABLE", "NIT_TABLE",
    "SDT_TABLE", "BAT_TABLE", "EIT_TABLE", "EIT_PF_TABLE", "EIT_SCHEDULE_TABLE", "TDT_TABLE",
    "RST_TABLE", "TOT_TABLE", "DIT_TABLE", "SIT_TABLE", "MGT_TABLE", "TVCT_TABLE", "CVCT_TABLE",
    "RRT_TABLE", "ETT_TABLE", "STT_TABLE", "EEPROM", "FLASH", "PVR_PLAYBACK_DEMUX0",
    "PVR_PLAYBACK_DEMUX1", "PVR_PLAYBACK_DEMUX2", "PVR_PLAYBACK_DEMUX3", "STREAMINJECT", "3D",
    "HDMI0", "HDMI1", "HDMI2", "MHL0", "MHL1", "MHL2", "CEC0", "CEC1", "CEC2", "CVBS0", "CVBS1",
    "YPBPR0", "YPBPR1", "VGA0", "AFE_TUNING_AFTER_ATV_SOURCE", "SMC1"};
// clang-format on

Rules feature_rules() {
    Rules rules;
    for (const std::string& name : kFeatures) {
        rules.push_back({"FEATURE", "FEATURE_" + name, 0, 1});
    }
    return rules;
}

struct TunerKey {
    const char* key;
    long min;
    long max;
    Kind kind = Kind::Integer;
};

void add_keys(const std::string& section, const std::vector<TunerKey>& keys, Rules* rules) {
    for (const TunerKey& key : keys) {
        rules->push_back({section, key.key, key.min, key.max, key.kind});
    }
}

const std::vector<TunerKey> kSatelliteKeys = {
    {"TUNER_KNOWN_OFFSET", 0, 1},
    {"TUNER_KNOWN_SYMBOLRATE", 0, 1},
    {"TUNER_POLARIZATION", 1, 2},
    {"TUNER_LNB_TONESTATE", 1, 2},
    {"TUNER_FEC_TYPE", 1, 2},
    {"TUNER_FEC_RATE", 1, 512, Kind::Bit},
    {"TUNER_LOCAL_OSC_FREQUENCY", 9000000, 11000000},
    {"TUNER_RF_BAND", 0, 1},
    {"TUNER_LOW_LNB_FREQUENCY", 9000000, 11000000},
    {"TUNER_HIGH_LNB_FREQENCY", 9000000, 11000000},
    {"TUNER_LNB_TYPE_REAL", 0, 1},
    {"TUNER_BLINDSCAN_START_IF_FREQUENCY_KHz", 950000, 2150000},
    {"TUNER_BLINDSCAN_END_IF_FREQUENCY_KHz", 950000, 2150000},
    {"TUNER_BLINDSCAN_START_SYMBOLRATE_Ksps", 1000, 45000},
    {"TUNER_BLINDSCAN_END_SYMBOLRATE_Ksps", 1000, 45000},
    {"TUNER_BLINDSCAN_LOW_LNB_FREQUENCY", 9000000, 11000000},
    {"TUNER_BLINDSCAN_HIGH_LNB_FREQUENCY", 9000000, 11000000},
    {"TUNER_DISEQC_FRAMING", 0xE0, 0xE7},
    {"TUNER_DISEQC_ADDRESS", 0, 255},
    {"TUNER_DISEQC_COMMAND", 0, 255},
    {"TUNER_UNICABLE_DEVID", 0, 255},
    {"TUNER_UNICABLE_CHANNEL_ID", 1, 8},
    {"TUNER_UNICABLE_CHANNEL_FREQ_KHZ", 950000, 2150000},
};

const std::vector<TunerKey> kTerrestrialKeys = {
    {"TUNER_GUARD_INTERVAL", 1, 8, Kind::Bit},
    {"TUNER_TRANSMISSION_MODE", 1, 4, Kind::Bit},
    {"TUNER_ECHO_POSITION", 0, 0},
    {"TUNER_BAND_WIDTH", 1, 4, Kind::Bit},
    {"TUNER_FEC_RATE", 1, 64, Kind::Bit},
    {"TUNER_TUNER_MODE", 0, 0},
    {"TUNER_HIERACHY", 0, 4},
    {"TUNER_PRIORITY", 0, 1},
};

Rules tuner_rules() {
    // 2048, ATSC-T3, may not be a default: with pipes configured its lock status is another.
    Rules rules = {{"TUNERDEV%d", "TUNER_TRANSMISSIONSYSTEM", 1, 1024, Kind::Bit}};
    const struct {
        const char* standard;
        long min_rate;  // symbols per second; 0 for OFDM
        long max_rate;
    } kModulated[] = {{"DVB-S", 1000000, 45000000},   {"DVB-T", 0, 0},
                      {"DVB-C", 1000000, 7000000},    {"ATSC-C", 5056941, 5360537},
                      {"ATSC-T", 10762238, 10762238}, {"ISDB-T", 0, 0},
                      {"ISDB-S", 28860000, 28860000}, {"ISDB-S3", 33756100, 33756100}};
    for (const auto& modulated : kModulated) {
        add_keys(modulated.standard,
                 {{"TUNER_MODULATION", 2, 16384, Kind::Bit},
                  {"TUNER_SYMBOLRATE", modulated.min_rate, modulated.max_rate},
                  {"TUNER_SPECTRUM", 0, 1}},
                 &rules);
    }
    add_keys("DVB-S", kSatelliteKeys, &rules);
    add_keys("DVB-T", kTerrestrialKeys, &rules);
    add_keys("ISDB-T", {{"TUNER_BAND_WIDTH", 1, 4, Kind::Bit}}, &rules);
    // Every pipe has an entry, the highest identifier that the cases ask for being 3.
    add_keys("ATSC-T3",
             {{"TUNER_MODULATION", 2, 4096, Kind::Bit},
              {"TUNER_BAND_WIDTH", 1, 4, Kind::Bit},
              {"TUNER_PLP_NUM", 1, 4},
              {"TUNER_PLP_ID0", 0, 0},
              {"TUNER_PLP_ID1", 1, 1},
              {"TUNER_PLP_ID2", 2, 2},
              {"TUNER_PLP_ID3", 3, 3}},
             &rules);
    add_keys("ATV",
             {{"TUNER_AUDIO_STANDARD", 2, 512, Kind::Bit},
              {"TUNER_COLOR_STANDARD", 2, 16, Kind::Bit},
              {"TUNER_TUNE_TYPE", 0, 1}},
             &rules);
    return rules;
}

// The platform folders in the order of their index, which starts at 1.
const Strings kBoards = {"mtk9602_au", "novatek",          "mtk9900_android_us", "rtd2851a_eu",
                         "mtk9602_eu", "mtk9900_linux_us", "mtk9900_linux_eu",   "mtk9602_isdb"};
constexpr const char* kFullBoard = "mtk9602_eu";

std::map<std::string, Rules> all_rules() {
    const unsigned dvb = kFrequency | kPesPid;
    std::map<std::string, Rules> files = {
        {"common_config.cfg", board_rules()},
        {"common/auto_test_platform.cfg",
         {{"PLATFORM_INFO", "PLATFORM", 1, static_cast<long>(kBoards.size())}}},
        {"common/channel_atsc_c.cfg", channel_rules(kFrequency)},
        {"common/channel_atsc_t.cfg", channel_rules(kFrequency)},
        {"common/channel_atsc_t3.cfg", frequency_only_rules()},
        {"common/channel_dvb_c.cfg", channel_rules(dvb)},
        {"common/channel_dvb_t.cfg", channel_rules(dvb)},
        {"common/channel_dvb_s.cfg", channel_rules(dvb)},
        {"common/channel_isdb_t.cfg", channel_rules(dvb)},
        {"common/channel_isdb_s.cfg", channel_rules(dvb | kTsId)},
        {"common/channel_isdb_s3.cfg", channel_rules(dvb | kStreamId)},
        {"common/channel_atv.cfg", frequency_only_rules()},
        {"common/av_config.cfg", av_rules()},
        {"common/pvr_config.cfg", pvr_rules()},
        {"common/localplayer_config.cfg", {}},
        {"common/demux_config.cfg", demux_rules()},
        {"common/stream_inject_config.cfg", stream_inject_rules()},
        {"common/AVDtvModule.cfg", av_dtv_rules()},
    };
    for (const std::string& board : kBoards) {
        files[board + "/channel_pvr_playback.cfg"] = channel_rules(kPesPid);
        files[board + "/common_config.cfg"] = board_rules();
        files[board + "/feature.cfg"] = feature_rules();
        files[board + "/tuner_config.cfg"] = tuner_rules();
    }
    return files;
}

// ---- The shipped tree ---------------------------------------------------------------------------

std::filesystem::path tree_root() {
    return std::filesystem::path(ZK_SOURCE_DIR) / "config";
}

ConfigFile load(const std::string& name) {
    std::ifstream in(tree_root() / name, std::ios::binary);
    std::stringstream text;
    text << in.rdbuf();
    return parse(text.str());
}

std::string joined(const Strings& lines) {
    std::string all;
    for (const std::string& line : lines) {
        all += line + "\n";
    }
    return all;
}

std::string channel_file(const std::string& standard) {
    std::string name = "common/channel_" + standard + ".cfg";
    for (char& c : name) {
        c = c == '-' ? '_' : static_cast<char>(std::tolower(c));
    }
    return name;
}

long channel_count(const ConfigFile& file) {
    return value_or_zero(file, "COMMON", "CHANNEL_NUM");
}

long channel_value(const ConfigFile& file, long index, const std::string& key) {
    return value_or_zero(file, "CHANNEL" + std::to_string(index), key);
}

// The PIDs of a channel's own components; the PCR and the PES PID name one of them again.
std::vector<long> component_pids(const ConfigFile& file, long channel) {
    std::vector<long> pids = {channel_value(file, channel, "VIDEO_PID"),
                              channel_value(file, channel, "PMT_PID")};
    for (const char* kind : {"AUDIO", "AUDIODESC", "SUBTITLE", "OTHER"}) {
        const std::string stem = kind;
        for (const std::string& key :
             expand(stem + "_PID%d", channel_value(file, channel, stem + "_NUM"))) {
            pids.push_back(channel_value(file, channel, key));
        }
    }
    return pids;
}

TEST(ConfigTree, HoldsEveryFileWithItsKeys) {
    std::set<std::string> present;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(tree_root())) {
        if (entry.is_regular_file()) {
            present.insert(std::filesystem::relative(entry.path(), tree_root()).string());
        }
    }
    std::set<std::string> expected;
    for (const auto& [name, rules] : all_rules()) {
        expected.insert(name);
        EXPECT_EQ("", joined(faults_against(rules, load(name)))) << name;
    }
    EXPECT_EQ(expected, present);
}

TEST(ConfigTree, ComponentsOfAChannelHaveTheirOwnPids) {
    Strings files = {"common/channel_isdb_s3.cfg"};
    for (const std::string& standard : kStandards) {
        files.push_back(channel_file(standard));
    }
    for (const std::string& board : kBoards) {
        files.push_back(board + "/channel_pvr_playback.cfg");
    }
    const long invalid =
        value_or_zero(load("common/demux_config.cfg"), "COMMON", "DEMUX_INVALID_PID");
    // The decoders are started on PID 8888 by the case that wants no signal: 13 bits are left.
    const long no_signal = 8888 & kMaxPid;
    for (const std::string& name : files) {
        const ConfigFile file = load(name);
        const bool recording = name.find("pvr_playback") != std::string::npos;
        for (long i = 0; i < channel_count(file); ++i) {
            std::set<long> seen;
            for (const long pid : component_pids(file, i)) {
                EXPECT_TRUE(seen.insert(pid).second) << name << " channel " << i << " PID " << pid;
                EXPECT_GE(pid, 0x20) << name << " channel " << i;
                EXPECT_LT(pid, kMaxPid) << name << " channel " << i;
                EXPECT_NE(pid, invalid) << name << " channel " << i;
                EXPECT_NE(pid, no_signal) << name << " channel " << i;
            }
            const bool atsc = name.find("atsc") != std::string::npos;
            const long eit = channel_value(file, i, "EIT_PID");
            EXPECT_EQ(0u, seen.count(eit)) << name << " channel " << i;
            EXPECT_TRUE(atsc || eit == 0x12) << name << " channel " << i;
            const long pcr = channel_value(file, i, "PCR_PID");
            EXPECT_TRUE(seen.count(pcr) == 0 || pcr == channel_value(file, i, "VIDEO_PID"))
                << name << " channel " << i;
            if (!recording && !atsc) {
                EXPECT_EQ(1u, seen.count(channel_value(file, i, "PES_PID"))) << name << " " << i;
            }
        }
    }
}

// Standards, the raster that the sweep cases walk (0 for none), and the least distance in kHz
// between two carriers of the standard.
struct BandPlan {
    const char* standard;
    long first;
    long last;
    long raster;
    long distance;
};

TEST(ConfigTree, CarriersLieInTheirBandAndApart) {
    const BandPlan plans[] = {
        {"DVB-T", 474000, 858000, 8000, 8000},      {"DVB-C", 114000, 858000, 8000, 8000},
        {"DVB-S", 950000, 2150000, 0, 41000},       {"ATSC-T", 473000, 803000, 6000, 6000},
        {"ATSC-C", 93000, 855000, 6000, 6000},      {"ATSC-T3", 473000, 803000, 6000, 6000},
        {"ISDB-T", 473143, 803143, 6000, 6000},     {"ISDB-S", 1049480, 1471440, 38360, 38360},
        {"ISDB-S3", 1049480, 1471440, 38360, 38360}};
    for (const BandPlan& plan : plans) {
        const ConfigFile file = load(channel_file(plan.standard));
        EXPECT_GE(channel_count(file), 2) << plan.standard;
        std::map<long, std::set<long>> streams;  // by carrier
        for (long i = 0; i < channel_count(file); ++i) {
            const long frequency = channel_value(file, i, "FREQUENCY");
            EXPECT_GE(frequency, plan.first) << plan.standard << " channel " << i;
            EXPECT_LE(frequency, plan.last) << plan.standard << " channel " << i;
            if (plan.raster != 0) {
                EXPECT_EQ(0, (frequency - plan.first) % plan.raster) << plan.standard << " " << i;
            }
            const long stream = channel_value(file, i, "TS_ID");
            EXPECT_TRUE(streams[frequency].insert(stream).second) << plan.standard << " " << i;
        }
        long previous = plan.first - plan.distance;
        for (const auto& carrier : streams) {
            EXPECT_GE(carrier.first - previous, plan.distance) << plan.standard << carrier.first;
            previous = carrier.first;
        }
    }
}

std::set<long> carriers(const std::string& standard) {
    const ConfigFile file = load(channel_file(standard));
    std::set<long> all;
    for (long i = 0; i < channel_count(file); ++i) {
        all.insert(channel_value(file, i, "FREQUENCY"));
    }
    return all;
}

TEST(ConfigTree, FixedFrequenciesOfTheCasesAreOnTheAir) {
    const std::set<long> dvb_t = carriers("DVB-T");
    for (const long frequency : {474000, 666000, 690000}) {
        EXPECT_EQ(1u, dvb_t.count(frequency)) << frequency;
    }
    EXPECT_EQ(1242000, channel_value(load(channel_file("DVB-S")), 0, "FREQUENCY"));
    // The two generations share a band but never a channel: a tuning to the one must not find the
    // other.
    const std::set<long> atsc = carriers("ATSC-T");
    for (const long frequency : carriers("ATSC-T3")) {
        EXPECT_EQ(0u, atsc.count(frequency)) << frequency;
    }
    const ConfigFile atv = load("common/channel_atv.cfg");
    const long step = channel_value(atv, 1, "FREQUENCY") - channel_value(atv, 0, "FREQUENCY");
    EXPECT_TRUE(step >= 4000 && step <= 6000) << step;
}

// The format cases look an index up in the table of the tuner's default system, so each index must
// promise the same content in all of them.
TEST(ConfigTree, SelectedChannelsCarryWhatTheyAreSelectedFor) {
    const ConfigFile av = load("common/av_config.cfg");
    for (const std::string& standard : kStandards) {
        const long mpeg2 = value_or_zero(av, standard, "AV_VIDEO_MPEG2_CHANNEL_ID");
        const long h264 = value_or_zero(av, standard, "AV_VIDEO_H264_CHANNEL_ID");
        const long ac3 = value_or_zero(av, "ATSC-T", "AV_AUDIO_AC3_CHANNEL_ID");
        for (const std::string& table : kStandards) {
            const ConfigFile channels = load(channel_file(table));
            EXPECT_LT(std::max({mpeg2, h264, ac3}), channel_count(channels)) << table;
            EXPECT_EQ(2, channel_value(channels, mpeg2, "VIDEO_FORMAT")) << standard << table;
            EXPECT_EQ(16, channel_value(channels, h264, "VIDEO_FORMAT")) << standard << table;
            EXPECT_EQ(2, channel_value(channels, ac3, "AUDIO_FORMAT0")) << table;
        }
    }
    EXPECT_EQ(value_or_zero(av, "ATSC-T", "AV_AUDIO_AC3_CHANNEL_ID"),
              value_or_zero(av, "ATSC-C", "AV_AUDIO_AC3_CHANNEL_ID"));
    for (const char* standard : {"DVB-C", "DVB-T", "DVB-S"}) {
        const long index = value_or_zero(av, standard, "AV_AUDIODESC_CHANNEL_ID");
        EXPECT_GE(channel_value(load(channel_file(standard)), index, "AUDIODESC_NUM"), 1);
    }
    for (const char* standard : {"ATSC-T", "ATSC-C"}) {
        const long index = value_or_zero(av, standard, "AV_VIDEOCC_CHANNEL_ID");
        EXPECT_LT(index, channel_count(load(channel_file(standard)))) << standard;
    }
    EXPECT_LT(value_or_zero(av, "ATV", "AV_ATV_CHANNEL_ID"),
              channel_count(load("common/channel_atv.cfg")));
    const ConfigFile av_dtv = load("common/AVDtvModule.cfg");
    for (const auto& manual : av_dtv.sections) {
        for (const std::string& table : kStandards) {
            EXPECT_LT(integer(manual.second.at("U_DTV_CHANNEL_ID")),
                      channel_count(load(channel_file(table))))
                << manual.first << " " << table;
        }
    }
}

TEST(ConfigTree, EveryChannelHasOneStreamFile) {
    const ConfigFile demux = load("common/demux_config.cfg");
    const std::string folder = demux.sections.at("COMMON").at("DEMUX_TS_FILE_PATH");
    EXPECT_EQ('/', folder.back());
    std::map<std::string, std::string> layouts;  // of each file: PIDs and formats
    for (const std::string& standard : kStandards) {
        const Section& block = demux.sections.at(standard);
        const ConfigFile channels = load(channel_file(standard));
        std::set<long> played;
        for (long i = 0; i < value_or_zero(demux, standard, "TS_FILE_NUM"); ++i) {
            const std::string key = "TS_FILE_" + std::to_string(i);
            const long channel = integer(block.at(key + "_CHANNEL_ID"));
            EXPECT_LT(channel, channel_count(channels)) << standard << key;
            EXPECT_TRUE(played.insert(channel).second) << standard << key;
            EXPECT_LT(folder.size() + block.at(key).size(), 200u) << standard << key;
            // A file that several standards share is the same stream on all of them.
            std::string layout;
            for (const auto& [name, value] :
                 channels.sections.at("CHANNEL" + std::to_string(channel))) {
                layout += name == "FREQUENCY" || name == "TS_ID" ? "" : name + "=" + value + " ";
            }
            EXPECT_EQ(layouts.emplace(block.at(key), layout).first->second, layout) << key;
        }
        EXPECT_EQ(static_cast<size_t>(channel_count(channels)), played.size()) << standard;
        // The section cases take the first two files for the first two channels.
        EXPECT_EQ("0", block.at("TS_FILE_0_CHANNEL_ID")) << standard;
        EXPECT_EQ("1", block.at("TS_FILE_1_CHANNEL_ID")) << standard;
    }
}

TEST(ConfigTree, RecordingPathsLeadToChannels) {
    const ConfigFile pvr = load("common/pvr_config.cfg");
    const std::pair<const char*, const char*> kPaths[] = {{"DVBT", "DVB-T"},
                                                          {"DVBS", "DVB-S"},
                                                          {"DVBC", "DVB-C"},
                                                          {"ISDBT", "ISDB-T"},
                                                          {"ISDBS", "ISDB-S"}};
    for (const auto& [name, standard] : kPaths) {
        const ConfigFile channels = load(channel_file(standard));
        const std::string stem = std::string("PVR_RCD_") + name + "_PATH";
        const long paths = value_or_zero(pvr, "RECODER", stem + "_NUM");
        EXPECT_GE(paths, 1) << name;
        for (const std::string& key : expand(stem + "%d_CHANNEL", paths)) {
            EXPECT_LT(value_or_zero(pvr, "RECODER", key), channel_count(channels)) << key;
        }
    }
    EXPECT_GE(value_or_zero(pvr, "RECODER", "PVR_RCD_ISDBT_PATH_NUM"), 3);
    ASSERT_EQ(4, value_or_zero(pvr, "RECODER", "PVR_RCD_DVBT_PATH_NUM"));
    const long multi = value_or_zero(pvr, "RECODER", "PVR_RCD_DVBT_PATH3_CHANNEL");
    const ConfigFile dvb_t = load("common/channel_dvb_t.cfg");
    EXPECT_GE(channel_value(dvb_t, multi, "AUDIO_NUM"), 2);
    for (const char* count : {"AUDIODESC_NUM", "SUBTITLE_NUM", "OTHER_NUM"}) {
        EXPECT_GE(channel_value(dvb_t, multi, count), 1) << count;
    }
    const Section& recorder = pvr.sections.at("RECODER");
    EXPECT_EQ('/', recorder.at("PVR_RCD_STORE_DIR").back());
    EXPECT_EQ('/', recorder.at("PVR_RCD_STORE_DISK_DIR").back());
}

// Loading the playback table writes four words into the ISDB-S channel of the same index.
TEST(ConfigTree, PlaybackChannelsLeaveTheSatelliteTableAsItWas) {
    const ConfigFile isdb_s = load("common/channel_isdb_s.cfg");
    for (const std::string& board : kBoards) {
        const ConfigFile playback = load(board + "/channel_pvr_playback.cfg");
        ASSERT_LE(channel_count(playback), channel_count(isdb_s)) << board;
        for (long i = 0; i < channel_count(playback); ++i) {
            for (const char* key : {"PMT_PID", "EIT_PID", "ETT_PID", "PES_PID"}) {
                EXPECT_EQ(channel_value(isdb_s, i, key), channel_value(playback, i, key))
                    << board << " channel " << i << " " << key;
            }
        }
        // The recordings are the same for all boards.
        EXPECT_EQ(load(std::string(kFullBoard) + "/channel_pvr_playback.cfg").sections,
                  playback.sections)
            << board;
        EXPECT_GE(channel_value(playback, 0, "AUDIO_NUM"), 2) << board;
    }
}

TEST(ConfigTree, BoardsAreConsistent) {
    std::set<std::map<std::string, std::string>> feature_sets;
    for (const std::string& board : kBoards) {
        const ConfigFile config = load(board + "/common_config.cfg");
        const Section& common = config.sections.at("COMMON");
        // A run on a workstation must not restart it.
        EXPECT_EQ("./", common.at("COMMON_REBOOT_CMD").substr(0, 2)) << board;
        EXPECT_GE(value_or_zero(config, "IIC", "IIC_DEV_DATA_WRITE_LEN"), 1) << board;
        EXPECT_TRUE(value_or_zero(config, "AOUT", "AOUT_SINK_SPEAKER") == 0 ||
                    value_or_zero(config, "AMP", "AMP_CHIP_NAME") != 0)
            << board;
        // The pin under test is driven high and low and must hold neither amplifier nor jack.
        const long pin = value_or_zero(config, "GPIO", "GPIO_NUM");
        for (const auto& [section, key] :
             {std::pair("AMP", "AMP_GPIO_RESET"), std::pair("AMP", "AMP_GPIO_MUTE"),
              std::pair("AOUT", "AOUT_GPIO_HP_DETECT")}) {
            EXPECT_NE(pin, value_or_zero(config, section, key)) << board << key;
        }
        const ConfigFile tuner = load(board + "/tuner_config.cfg");
        const long system = value_or_zero(tuner, "TUNERDEV0", "TUNER_TRANSMISSIONSYSTEM");
        EXPECT_TRUE(std::set<long>({1, 4, 16, 64, 128, 256, 512}).count(system)) << board;
        for (int n = 1; n < 4; ++n) {
            EXPECT_EQ(system, value_or_zero(tuner, "TUNERDEV" + std::to_string(n),
                                            "TUNER_TRANSMISSIONSYSTEM"))
                << board << " tuner " << n;
        }
        // The offset cases tune beside the carrier with the board's own record and expect a lock.
        EXPECT_EQ(0, value_or_zero(tuner, "DVB-S", "TUNER_KNOWN_OFFSET")) << board;
        feature_sets.insert(load(board + "/feature.cfg").sections.at("FEATURE"));
    }
    EXPECT_EQ(kBoards.size(), feature_sets.size());
}

TEST(ConfigTree, UnattendedRunsUseTheBoardThatHasEverything) {
    const long index =
        value_or_zero(load("common/auto_test_platform.cfg"), "PLATFORM_INFO", "PLATFORM");
    EXPECT_EQ(kFullBoard, kBoards.at(static_cast<size_t>(index - 1)));
    const std::string board = kFullBoard;
    const ConfigFile features = load(board + "/feature.cfg");
    for (const auto& [key, value] : features.sections.at("FEATURE")) {
        // A behaviour rather than a part: the full board lets the callers open the output.
        EXPECT_EQ(key == "FEATURE_AFE_TUNING_AFTER_ATV_SOURCE" ? "0" : "1", value) << key;
    }
    const ConfigFile settings = load(board + "/common_config.cfg");
    for (const auto& [key, value] : settings.sections.at("AOUT")) {
        EXPECT_NE("0", value) << key;
    }
}

// ---- The checker itself -------------------------------------------------------------------------

TEST(ConfigTreeChecker, FindsEachFault) {
    const Rules rules = {{"COMMON", "CHANNEL_NUM", 1, 100},
                         {"CHANNEL%d", "AUDIO_NUM", 0, 16},
                         {"CHANNEL%d", "AUDIO_FORMAT", 1, 8, Kind::Bit},
                         {"CHANNEL%d", "AUDIO_PID%d", 1, kMaxPid, Kind::Integer, "AUDIO_NUM"}};
    const std::string good =
        "# A comment = with an equals sign.\n\n[COMMON]\nCHANNEL_NUM=1\n"
        "[CHANNEL0]\nAUDIO_NUM=2\nAUDIO_FORMAT=2\nAUDIO_PID0=256\nAUDIO_PID1=0x101\n";
    EXPECT_EQ("", joined(faults_against(rules, parse(good))));
    const struct {
        const char* what;
        const char* from;
        const char* to;
        const char* fault;
    } kFaults[] = {
        {"misspelled key", "AUDIO_PID1", "AUDIO_PDI1", "[CHANNEL0]AUDIO_PDI1: unknown"},
        {"misspelled key", "AUDIO_PID1", "AUDIO_PDI1", "[CHANNEL0]AUDIO_PID1: missing"},
        {"count above the pairs", "AUDIO_NUM=2", "AUDIO_NUM=3", "[CHANNEL0]AUDIO_PID2: missing"},
        {"count below the pairs", "AUDIO_NUM=2", "AUDIO_NUM=1", "[CHANNEL0]AUDIO_PID1: unknown"},
        {"count above the limit", "AUDIO_NUM=2", "AUDIO_NUM=17", "AUDIO_NUM: out of range"},
        {"channel missing", "CHANNEL_NUM=1", "CHANNEL_NUM=2", "[CHANNEL1]AUDIO_NUM: missing"},
        {"key twice", "AUDIO_PID1=0x101", "AUDIO_PID0=1", "key repeated"},
        {"section twice", "[CHANNEL0]", "[COMMON]", "section repeated"},
        {"PID beyond 13 bits", "256", "8192", "[CHANNEL0]AUDIO_PID0: out of range"},
        {"comment behind a value", "256", "256 # main", "not KEY=VALUE"},
        {"number with a tail", "256", "256kHz", "[CHANNEL0]AUDIO_PID0: not an integer"},
        {"two formats in one", "AUDIO_FORMAT=2", "AUDIO_FORMAT=3",
         "AUDIO_FORMAT: not one of the enumerated values"},
        {"octal by accident", "256", "0256", "[CHANNEL0]AUDIO_PID0: octal"},
        {"word alone", "AUDIO_NUM=2", "AUDIO_NUM", "not KEY=VALUE"},
        {"unclosed header", "[CHANNEL0]", "[CHANNEL0", "bad section header"},
        {"overlong value", "256", "00000000000000000000000000000000000000000000000000",
         "[CHANNEL0]AUDIO_PID0: value too long"},
        {"tab", "256", "256\t", "control"},
        {"no opening comment", "# A", "\n# A", "does not open with a comment"},
    };
    for (const auto& fault : kFaults) {
        std::string text = good;
        text.replace(text.find(fault.from), std::string(fault.from).size(), fault.to);
        EXPECT_NE(std::string::npos, joined(faults_against(rules, parse(text))).find(fault.fault))
            << fault.what << ": " << joined(faults_against(rules, parse(text)));
    }
}

}  // namespace
