// In which state demultiplexers, filters and slots refuse which call, the pool of filters, and what
// a close, a deinit and a reset leave behind.
#include <gtest/gtest.h>

#include <functional>
#include <set>
#include <string>
#include <vector>

#include "platform/qlx_ci.h"
#include "platform/qlx_demux.h"
#include "platform/qlx_filter.h"
#include "tests/shared/device.h"

namespace {

constexpr int32_t invalid = QLX_DEMUX_ERR_INVALID_PARA;

class SimDemuxState : public testing::Test {
 protected:
    void SetUp() override {
        qlx_sim_reset();
    }
    void TearDown() override {
        qlx_sim_reset();
    }
};

int32_t connect(uint32_t demux, uint32_t type, uint32_t index) {
    QLX_Source source = {type, index, 0};
    return QLX_DemuxConnectSource(demux, &source);
}

TEST_F(SimDemuxState, EachStateRefusesWhatItMust) {
    static uint32_t handle;
    static QLX_Source source;
    static QLX_DemuxCapability capability;
    struct {
        const char* what;
        std::function<int32_t(uint32_t)> call;
    } calls[] = {
        {"close", [](uint32_t id) { return QLX_DemuxClose(id); }},
        {"start", [](uint32_t id) { return QLX_DemuxStart(id); }},
        {"stop", [](uint32_t id) { return QLX_DemuxStop(id); }},
        {"connect", [](uint32_t id) { return connect(id, QLX_SOURCE_TYPE_TUNER, 1); }},
        {"connection", [](uint32_t id) { return QLX_DemuxGetSourceConnection(id, &source); }},
        {"capability", [](uint32_t id) { return QLX_DemuxGetCapability(id, &capability); }},
        {"section", [](uint32_t id) { return QLX_DemuxCreateSectionFilter(id, &handle); }},
        {"PES", [](uint32_t id) { return QLX_DemuxCreatePesFilter(id, &handle); }},
        {"packet", [](uint32_t id) { return QLX_DemuxCreatePacketFilter(id, &handle); }},
    };
    for (const auto& row : calls) {
        qlx_sim_reset();
        EXPECT_EQ(row.call(0), QLX_FAILED) << row.what << " before init";
        EXPECT_EQ(QLX_DemuxInit(), 0);
        EXPECT_EQ(row.call(0), QLX_FAILED) << row.what << " before open";
        EXPECT_EQ(QLX_DemuxOpen(1), 0);
        EXPECT_EQ(row.call(0), QLX_FAILED) << row.what << " with another one open";
        EXPECT_EQ(QLX_DemuxOpen(0), 0);
        EXPECT_EQ(row.call(QLX_DEMUX_NUM_MAX), invalid) << row.what;
        EXPECT_EQ(row.call(0), 0) << row.what;
        QLX_DemuxClose(0);
        EXPECT_EQ(row.call(0), QLX_FAILED) << row.what << " after close";
        EXPECT_EQ(QLX_DemuxOpen(0), 0);
        EXPECT_EQ(QLX_DemuxInit(), 0);
        EXPECT_EQ(QLX_DemuxDeInit(), 0);
        EXPECT_EQ(row.call(0), QLX_FAILED) << row.what << " after two inits and one deinit";
    }
}

TEST_F(SimDemuxState, OpensOnceAndForgetsAtClose) {
    EXPECT_EQ(QLX_DemuxOpen(0), QLX_FAILED);
    EXPECT_EQ(QLX_DemuxInit(), 0);
    EXPECT_EQ(QLX_DemuxOpen(QLX_DEMUX_NUM_MAX), invalid);
    EXPECT_EQ(QLX_DemuxOpen(3), 0);
    EXPECT_EQ(QLX_DemuxOpen(3), QLX_FAILED);
    uint32_t handle = 0;
    EXPECT_EQ(QLX_DemuxCreatePesFilter(3, &handle), 0);
    EXPECT_EQ(connect(3, QLX_SOURCE_TYPE_TUNER, 2), 0);
    EXPECT_EQ(QLX_DemuxStart(3), 0);
    EXPECT_EQ(QLX_DemuxStart(3), 0);
    EXPECT_EQ(deviceState(),
              "Demux initialised\nDemux 3 open\nDemux 3 connected to source 1 2\n"
              "Demux 3 started\nDemux 3 PesFilter 1\n");
    EXPECT_EQ(QLX_DemuxClose(3), 0);
    EXPECT_EQ(QLX_PesFilterDelete(handle), invalid);
    EXPECT_EQ(QLX_DemuxOpen(3), 0);
    QLX_Source source = {7, 7, 7};
    EXPECT_EQ(QLX_DemuxGetSourceConnection(3, &source), 0);
    EXPECT_EQ(source.eSourceType, static_cast<uint32_t>(QLX_SOURCE_TYPE_NONE));
    EXPECT_EQ(deviceState(), "Demux initialised\nDemux 3 open\n");
    EXPECT_EQ(QLX_DemuxDeInit(), 0);
    EXPECT_EQ(deviceState(), "");
}

TEST_F(SimDemuxState, ConnectsToTunersAndToRecordedData) {
    EXPECT_EQ(QLX_DemuxInit(), 0);
    EXPECT_EQ(QLX_DemuxOpen(0), 0);
    struct {
        uint32_t type;
        uint32_t index;
        int32_t result;
    } rows[] = {
        {QLX_SOURCE_TYPE_TUNER, 0, 0},       {QLX_SOURCE_TYPE_TUNER, 3, 0},
        {QLX_SOURCE_TYPE_RECORD, 0, 0},      {QLX_SOURCE_TYPE_TUNER, 4, invalid},
        {QLX_SOURCE_TYPE_NONE, 0, invalid},  {QLX_SOURCE_TYPE_HDMI, 0, invalid},
        {QLX_SOURCE_TYPE_DEMUX, 0, invalid}, {QLX_SOURCE_TYPE_INVALID, 0, invalid},
    };
    QLX_Source before = {};
    for (const auto& row : rows) {
        EXPECT_EQ(connect(0, row.type, row.index), row.result) << row.type;
        if (row.result == 0)
            before = {row.type, row.index, 0};
        QLX_Source source = {};
        EXPECT_EQ(QLX_DemuxGetSourceConnection(0, &source), 0);
        EXPECT_EQ(source.eSourceType, before.eSourceType) << "a refusal changes nothing";
        EXPECT_EQ(source.uSourceIndex, before.uSourceIndex);
    }
    EXPECT_EQ(QLX_DemuxConnectSource(0, nullptr), invalid);
    EXPECT_EQ(QLX_DemuxGetSourceConnection(0, nullptr), invalid);
    EXPECT_EQ(QLX_DemuxGetCapability(0, nullptr), invalid);
    EXPECT_EQ(QLX_DemuxCreateSectionFilter(0, nullptr), invalid);
}

TEST_F(SimDemuxState, OnePoolHoldsAllKindsOfFilters) {
    EXPECT_EQ(QLX_DemuxInit(), 0);
    EXPECT_EQ(QLX_DemuxOpen(0), 0);
    EXPECT_EQ(QLX_DemuxOpen(1), 0);
    QLX_DemuxCapability capability = {};
    EXPECT_EQ(QLX_DemuxGetCapability(0, &capability), 0);
    ASSERT_GE(capability.FilterNum, 2u);
    EXPECT_EQ(capability.FilterNum % 2, 0u) << "half sections, half PES must fill it";
    std::vector<uint32_t> handles;
    for (uint32_t i = 0; i < capability.FilterNum; i++) {
        auto create = i % 3 == 0   ? QLX_DemuxCreateSectionFilter
                      : i % 3 == 1 ? QLX_DemuxCreatePesFilter
                                   : QLX_DemuxCreatePacketFilter;
        uint32_t handle = 0;
        EXPECT_EQ(create(0, &handle), 0) << i;
        handles.push_back(handle);
    }
    EXPECT_EQ(std::set<uint32_t>(handles.begin(), handles.end()).size(), handles.size());
    EXPECT_EQ(std::set<uint32_t>(handles.begin(), handles.end()).count(0), 0u);
    uint32_t more = 0;
    EXPECT_EQ(QLX_DemuxCreateSectionFilter(0, &more), QLX_DEMUX_ERR_NO_RESOURCE);
    EXPECT_EQ(QLX_DemuxCreatePesFilter(0, &more), QLX_DEMUX_ERR_NO_RESOURCE);
    EXPECT_EQ(QLX_DemuxCreatePacketFilter(0, &more), QLX_DEMUX_ERR_NO_RESOURCE);
    EXPECT_EQ(QLX_DemuxCreateSectionFilter(1, &more), 0) << "each demultiplexer has its own";
    EXPECT_EQ(QLX_SectionFilterDelete(handles[0]), 0);
    EXPECT_EQ(QLX_SectionFilterDelete(handles[0]), invalid);
    EXPECT_EQ(QLX_DemuxCreatePacketFilter(0, &more), 0);
}

void noReport(uint32_t, void*, void*) {
    ADD_FAILURE() << "there is nothing to report";
}

void otherReport(uint32_t, void*, void*) {}

/** The calls of one kind of filter. */
struct Kind {
    const char* name;
    int32_t (*create)(uint32_t, uint32_t*);
    int32_t (*configure)(uint32_t);
    int32_t (*configureNull)(uint32_t);
    int32_t (*registerCallback)(uint32_t, void*, QLX_FilterCallback);
    int32_t (*unregisterCallback)(uint32_t, QLX_FilterCallback);
    int32_t (*start)(uint32_t);
    int32_t (*stop)(uint32_t);
    int32_t (*remove)(uint32_t);
    int32_t (*freeBuffer)(void*);
};

int32_t configureSection(uint32_t handle) {
    QLX_SectionFilterParams params = {};
    return QLX_SectionFilterConfigure(handle, &params);
}
int32_t configurePes(uint32_t handle) {
    QLX_PesFilterParams params = {};
    return QLX_PesFilterConfigure(handle, &params);
}
int32_t configurePacket(uint32_t handle) {
    QLX_PacketFilterParams params = {};
    return QLX_PacketFilterConfigure(handle, &params);
}

const Kind kinds[] = {
    {"section", QLX_DemuxCreateSectionFilter, configureSection,
     [](uint32_t handle) { return QLX_SectionFilterConfigure(handle, nullptr); },
     QLX_SectionFilterRegisterCallback, QLX_SectionFilterUnRegisterCallback, QLX_SectionFilterStart,
     QLX_SectionFilterStop, QLX_SectionFilterDelete, QLX_SectionFilterFreeBuffer},
    {"PES", QLX_DemuxCreatePesFilter, configurePes,
     [](uint32_t handle) { return QLX_PesFilterConfigure(handle, nullptr); },
     QLX_PesFilterRegisterCallback, QLX_PesFilterUnRegisterCallback, QLX_PesFilterStart,
     QLX_PesFilterStop, QLX_PesFilterDelete, QLX_PesFilterFreeBuffer},
    {"packet", QLX_DemuxCreatePacketFilter, configurePacket,
     [](uint32_t handle) { return QLX_PacketFilterConfigure(handle, nullptr); },
     QLX_PacketFilterRegisterCallback, QLX_PacketFilterUnRegisterCallback, QLX_PacketFilterStart,
     QLX_PacketFilterStop, QLX_PacketFilterDelete, QLX_PacketFilterFreeBuffer},
};

TEST_F(SimDemuxState, FiltersAreConfiguredRegisteredStartedInThisOrder) {
    EXPECT_EQ(QLX_DemuxInit(), 0);
    EXPECT_EQ(QLX_DemuxOpen(0), 0);
    for (const Kind& kind : kinds) {
        uint32_t handle = 0;
        EXPECT_EQ(kind.create(0, &handle), 0);
        EXPECT_EQ(kind.start(handle), QLX_FAILED) << kind.name << " not configured";
        EXPECT_EQ(kind.stop(handle), 0) << kind.name;
        EXPECT_EQ(kind.configureNull(handle), invalid) << kind.name;
        EXPECT_EQ(kind.configure(handle), 0) << kind.name;
        EXPECT_EQ(kind.start(handle), QLX_FAILED) << kind.name << " without a callback";
        EXPECT_EQ(kind.registerCallback(handle, nullptr, nullptr), invalid) << kind.name;
        EXPECT_EQ(kind.registerCallback(handle, nullptr, noReport), 0) << kind.name;
        EXPECT_EQ(kind.start(handle), 0) << kind.name;
        EXPECT_EQ(kind.start(handle), QLX_FAILED) << kind.name << " runs";
        EXPECT_EQ(kind.configure(handle), QLX_FAILED) << kind.name << " runs";
        EXPECT_EQ(kind.registerCallback(handle, nullptr, noReport), QLX_FAILED) << kind.name;
        EXPECT_EQ(kind.unregisterCallback(handle, otherReport), QLX_FAILED) << kind.name;
        EXPECT_EQ(kind.unregisterCallback(handle, noReport), 0) << kind.name;
        EXPECT_EQ(kind.unregisterCallback(handle, noReport), QLX_FAILED) << kind.name;
        EXPECT_EQ(kind.stop(handle), 0) << kind.name;
        EXPECT_EQ(kind.stop(handle), 0) << kind.name;
        EXPECT_EQ(kind.configure(handle), 0) << kind.name;
        EXPECT_EQ(kind.registerCallback(handle, nullptr, noReport), 0) << kind.name;
        EXPECT_EQ(kind.start(handle), 0) << kind.name;
        EXPECT_EQ(kind.remove(handle), 0) << kind.name << " runs";
        EXPECT_EQ(kind.remove(handle), invalid) << kind.name;
    }
}

TEST_F(SimDemuxState, AHandleIsThatOfOneKind) {
    EXPECT_EQ(QLX_DemuxInit(), 0);
    EXPECT_EQ(QLX_DemuxOpen(0), 0);
    for (const Kind& mine : kinds) {
        uint32_t handle = 0;
        EXPECT_EQ(mine.create(0, &handle), 0);
        for (const Kind& other : kinds) {
            if (&other == &mine)
                continue;
            EXPECT_EQ(other.configure(handle), invalid) << mine.name << " as " << other.name;
            EXPECT_EQ(other.registerCallback(handle, nullptr, noReport), invalid);
            EXPECT_EQ(other.unregisterCallback(handle, noReport), invalid);
            EXPECT_EQ(other.start(handle), invalid);
            EXPECT_EQ(other.stop(handle), invalid);
            EXPECT_EQ(other.remove(handle), invalid);
        }
        EXPECT_EQ(mine.freeBuffer(&handle), invalid) << "a buffer that never was one";
        EXPECT_EQ(mine.freeBuffer(nullptr), invalid);
        EXPECT_EQ(mine.remove(handle), 0) << mine.name;
        EXPECT_EQ(mine.configure(0), invalid) << mine.name;
    }
}

TEST_F(SimDemuxState, ParametersHaveRanges) {
    EXPECT_EQ(QLX_DemuxInit(), 0);
    EXPECT_EQ(QLX_DemuxOpen(0), 0);
    uint32_t handle = 0;
    EXPECT_EQ(QLX_DemuxCreateSectionFilter(0, &handle), 0);
    QLX_SectionFilterParams params = {};
    params.uPid = 0x1fff;
    params.uDepth = QLX_SECTION_FILTER_BYTES;
    params.eCrcMode = QLX_SECTION_CRC_NO_CHECK;
    params.uTimeOutMs = UINT32_MAX;
    params.uBufferSize = UINT32_MAX;
    EXPECT_EQ(QLX_SectionFilterConfigure(handle, &params), 0);
    params.uPid = 0x2000;
    EXPECT_EQ(QLX_SectionFilterConfigure(handle, &params), invalid);
    params.uPid = 0;
    params.uDepth = QLX_SECTION_FILTER_BYTES + 1;
    EXPECT_EQ(QLX_SectionFilterConfigure(handle, &params), invalid);
    params.uDepth = 1;
    params.eCrcMode = QLX_SECTION_CRC_NO_CHECK + 1;
    EXPECT_EQ(QLX_SectionFilterConfigure(handle, &params), invalid);
}

TEST_F(SimDemuxState, SlotsLetTheStreamThroughEitherWay) {
    QLX_CITsConfig path = {
        QLX_CI_TS_MODE_PASS_THROUGH, {QLX_SOURCE_TYPE_TUNER, 0, 0}, QLX_SOURCE_TYPE_DEMUX, 0};
    EXPECT_EQ(QLX_CIOpen(0), QLX_FAILED);
    EXPECT_EQ(QLX_CISetSrcType(QLX_SOURCE_TYPE_TUNER), QLX_FAILED);
    EXPECT_EQ(QLX_CIInit(), 0);
    EXPECT_EQ(QLX_CIInit(), 0);
    EXPECT_EQ(QLX_CISetTsConfig(0, &path), QLX_FAILED);
    EXPECT_EQ(QLX_CIClose(0), QLX_FAILED);
    EXPECT_EQ(QLX_CIOpen(QLX_CI_SLOT_MAX), QLX_CI_ERR_INVALID_PARA);
    EXPECT_EQ(QLX_CIOpen(0), 0);
    EXPECT_EQ(QLX_CISetSrcType(QLX_SOURCE_TYPE_TUNER), 0);
    EXPECT_EQ(QLX_CISetSrcType(QLX_SOURCE_TYPE_HDMI), QLX_CI_ERR_INVALID_PARA);
    EXPECT_EQ(QLX_CISetTsConfig(0, &path), 0);
    EXPECT_EQ(QLX_CISetTsConfig(1, &path), QLX_FAILED);
    EXPECT_EQ(QLX_CISetTsConfig(0, nullptr), QLX_CI_ERR_INVALID_PARA);
    path.eMode = QLX_CI_TS_MODE_PASS_THROUGH + 1;
    EXPECT_EQ(QLX_CISetTsConfig(0, &path), QLX_CI_ERR_INVALID_PARA);
    EXPECT_EQ(deviceState(), "CI initialised\nCI slot 0 open\n");
    EXPECT_EQ(QLX_CIClose(0), 0);
    EXPECT_EQ(QLX_CIClose(0), QLX_FAILED);
    EXPECT_EQ(QLX_CIOpen(1), 0);
    EXPECT_EQ(QLX_CIDeInit(), 0);
    EXPECT_EQ(deviceState(), "");
}

}  // namespace
