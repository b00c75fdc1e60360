#include "tests/streams/dvbpsi_tables.h"

#include <stdio.h>
#include <string.h>

// The library's headers need the ones before them.
// clang-format off
#include <dvbpsi/dvbpsi.h>
#include <dvbpsi/psi.h>
#include <dvbpsi/descriptor.h>
#include <dvbpsi/demux.h>
#include <dvbpsi/pat.h>
#include <dvbpsi/cat.h>
#include <dvbpsi/pmt.h>
#include <dvbpsi/nit.h>
#include <dvbpsi/sdt.h>
#include <dvbpsi/bat.h>
#include <dvbpsi/eit.h>
#include <dvbpsi/tot.h>
#include <dvbpsi/rst.h>
#include <dvbpsi/atsc_mgt.h>
#include <dvbpsi/atsc_vct.h>
#include <dvbpsi/atsc_stt.h>
#include <dvbpsi/atsc_eit.h>
#include <dvbpsi/atsc_ett.h>
#include <dvbpsi/dr_0a.h>
#include <dvbpsi/dr_56.h>
#include <dvbpsi/dr_59.h>
#include <dvbpsi/dr_a1.h>
// clang-format on

#include "tests/streams/made_streams.h"

namespace mkstreams {

using Lines = std::set<std::string>;

static std::string number(uint64_t value) {
    return " " + std::to_string(value);
}

static std::string hex(unsigned value) {
    char text[8];
    snprintf(text, sizeof(text), "%02x", value);
    return text;
}

static std::string tags(const dvbpsi_descriptor_t* descriptor) {
    std::string text = " [";
    for (; descriptor != nullptr; descriptor = descriptor->p_next)
        text += (text.size() > 2 ? " " : "") + hex(descriptor->i_tag);
    return text + "]";
}

static Lines& lines(void* data) {
    return *static_cast<Lines*>(data);
}

static void onPat(void* data, dvbpsi_pat_t* pat) {
    std::string line = "pat" + number(pat->i_ts_id);
    for (auto* program = pat->p_first_program; program != nullptr; program = program->p_next)
        line += number(program->i_number) + ":" + std::to_string(program->i_pid);
    lines(data).insert(line);
    dvbpsi_pat_delete(pat);
}

static void onCat(void* data, dvbpsi_cat_t* cat) {
    lines(data).insert("cat" + tags(cat->p_first_descriptor));
    dvbpsi_cat_delete(cat);
}

static const char languageLine[] = "language ";

/** The language that a component's descriptors tell; empty when none does. */
static std::string languageOf(dvbpsi_descriptor_t* descriptor) {
    for (; descriptor != nullptr; descriptor = descriptor->p_next) {
        const uint8_t* code = nullptr;
        if (descriptor->i_tag == 0x0A)
            code = dvbpsi_DecodeISO639Dr(descriptor)->code[0].iso_639_code;
        else if (descriptor->i_tag == 0x56)
            code = dvbpsi_DecodeTeletextDr(descriptor)->p_pages[0].i_iso6392_language_code;
        else if (descriptor->i_tag == 0x59)
            code = dvbpsi_DecodeSubtitlingDr(descriptor)->p_subtitle[0].i_iso6392_language_code;
        if (code != nullptr)
            return std::string(code, code + 3);
    }
    return "";
}

static void noteLanguage(void* data, unsigned pid, const std::string& language) {
    lines(data).insert(languageLine + std::to_string(pid) + (language.empty() ? "" : " ") +
                       language);
}

/** The components that a service location descriptor tells. */
static void noteLocations(void* data, dvbpsi_descriptor_t* descriptor) {
    for (; descriptor != nullptr; descriptor = descriptor->p_next) {
        if (descriptor->i_tag != 0xA1)
            continue;
        const dvbpsi_service_location_dr_t* location = dvbpsi_DecodeServiceLocationDr(descriptor);
        for (unsigned i = 0; i < location->i_number_elements; i++) {
            const dvbpsi_service_location_element_t& element = location->elements[i];
            std::string code(element.i_iso_639_code, 3);
            noteLanguage(data, element.i_elementary_pid, code[0] == 0 ? "" : code);
        }
    }
}

static void onPmt(void* data, dvbpsi_pmt_t* pmt) {
    std::string line = "pmt" + number(pmt->i_program_number) + " pcr" + number(pmt->i_pcr_pid);
    for (auto* stream = pmt->p_first_es; stream != nullptr; stream = stream->p_next) {
        line += " " + hex(stream->i_type) + ":" + std::to_string(stream->i_pid);
        noteLanguage(data, stream->i_pid, languageOf(stream->p_first_descriptor));
    }
    lines(data).insert(line);
    dvbpsi_pmt_delete(pmt);
}

static void onRst(void* data, dvbpsi_rst_t* rst) {
    for (auto* event = rst->p_first_event; event != nullptr; event = event->p_next)
        lines(data).insert("rst" + number(event->i_ts_id) + number(event->i_orig_network_id) +
                           number(event->i_service_id) + number(event->i_event_id) +
                           number(event->i_running_status));
    dvbpsi_rst_delete(rst);
}

static void onNit(void* data, dvbpsi_nit_t* nit) {
    std::string line =
        "nit " + hex(nit->i_table_id) + number(nit->i_network_id) + tags(nit->p_first_descriptor);
    for (auto* ts = nit->p_first_ts; ts != nullptr; ts = ts->p_next)
        line += number(ts->i_ts_id) + "/" + std::to_string(ts->i_orig_network_id) +
                tags(ts->p_first_descriptor);
    lines(data).insert(line);
    dvbpsi_nit_delete(nit);
}

static void onBat(void* data, dvbpsi_bat_t* bat) {
    std::string line = "bat" + number(bat->i_extension) + tags(bat->p_first_descriptor);
    for (auto* ts = bat->p_first_ts; ts != nullptr; ts = ts->p_next)
        line += number(ts->i_ts_id) + "/" + std::to_string(ts->i_orig_network_id) +
                tags(ts->p_first_descriptor);
    lines(data).insert(line);
    dvbpsi_bat_delete(bat);
}

static void onSdt(void* data, dvbpsi_sdt_t* sdt) {
    std::string line =
        "sdt " + hex(sdt->i_table_id) + number(sdt->i_extension) + number(sdt->i_network_id);
    for (auto* service = sdt->p_first_service; service != nullptr; service = service->p_next)
        line += number(service->i_service_id) + (service->b_eit_schedule ? "s" : "") +
                (service->b_eit_present ? "p" : "") + (service->b_free_ca ? "c" : "") +
                tags(service->p_first_descriptor);
    lines(data).insert(line);
    dvbpsi_sdt_delete(sdt);
}

static void onEit(void* data, dvbpsi_eit_t* eit) {
    std::string line = "eit " + hex(eit->i_table_id) + number(eit->i_extension) +
                       number(eit->i_ts_id) + number(eit->i_network_id);
    unsigned count = 0;
    uint64_t previous = 0;
    for (auto* event = eit->p_first_event; event != nullptr; event = event->p_next) {
        if (event->i_duration != 0x010000)
            lines(data).insert("! an event does not last an hour");
        if (event->i_start_time <= previous)
            lines(data).insert("! events out of order");
        previous = event->i_start_time;
        if (count++ == 0)
            line += " first" + number(event->i_event_id);
    }
    lines(data).insert(line + " events" + number(count));
    dvbpsi_eit_delete(eit);
}

static void onTot(void* data, dvbpsi_tot_t* tot) {
    lines(data).insert("tot " + hex(tot->i_table_id) + number(tot->i_utc_time >> 24) + " " +
                       hex(tot->i_utc_time >> 16 & 0xFF) + hex(tot->i_utc_time >> 8 & 0xFF) +
                       hex(tot->i_utc_time & 0xFF) + tags(tot->p_first_descriptor));
    dvbpsi_tot_delete(tot);
}

static void onMgt(void* data, dvbpsi_atsc_mgt_t* mgt) {
    for (auto* table = mgt->p_first_table; table != nullptr; table = table->p_next)
        lines(data).insert("mgt type" + number(table->i_table_type) + " pid" +
                           number(table->i_table_type_pid) + " bytes" +
                           number(table->i_number_bytes));
    dvbpsi_atsc_DeleteMGT(mgt);
}

static void onVct(void* data, dvbpsi_atsc_vct_t* vct) {
    for (auto* channel = vct->p_first_channel; channel != nullptr; channel = channel->p_next) {
        std::string name;
        for (size_t i = 1; i < sizeof(channel->i_short_name); i += 2)
            if (channel->i_short_name[i] != 0)
                name += static_cast<char>(channel->i_short_name[i]);
        lines(data).insert(
            std::string(vct->b_cable_vct ? "cvct" : "tvct") + number(vct->i_extension) + " " +
            name + number(channel->i_major_number) + "-" + std::to_string(channel->i_minor_number) +
            " modulation" + number(channel->i_modulation) + " tsid" +
            number(channel->i_channel_tsid) + " program" + number(channel->i_program_number) +
            " source" + number(channel->i_source_id) + " type" + number(channel->i_service_type) +
            tags(channel->p_first_descriptor));
        noteLocations(data, channel->p_first_descriptor);
    }
    dvbpsi_atsc_DeleteVCT(vct);
}

static void onStt(void* data, dvbpsi_atsc_stt_t* stt) {
    lines(data).insert("stt" + number(stt->i_system_time) + number(stt->i_gps_utc_offset) +
                       number(stt->i_daylight_savings));
    dvbpsi_atsc_DeleteSTT(stt);
}

static void onAtscEit(void* data, dvbpsi_atsc_eit_t* eit) {
    std::string line = "atsc eit source" + number(eit->i_source_id);
    for (auto* event = eit->p_first_event; event != nullptr; event = event->p_next)
        line += number(event->i_event_id) + "@" + std::to_string(event->i_start_time) + "+" +
                std::to_string(event->i_length_seconds) + " etm" + number(event->i_etm_location);
    lines(data).insert(line);
    dvbpsi_atsc_DeleteEIT(eit);
}

static void onEtt(void* data, dvbpsi_atsc_ett_t* ett) {
    // Behind the head of the only string and its only segment stands the text.
    std::string text;
    if (ett->i_etm_length > 8)
        text.assign(reinterpret_cast<char*>(ett->p_etm_data) + 8, ett->i_etm_length - 8);
    lines(data).insert("ett" + number(ett->i_etm_id) + " " + text);
    dvbpsi_atsc_DeleteETT(ett);
}

static void onSubtable(dvbpsi_t* handle, uint8_t tableId, uint16_t extension, void* data) {
    bool attached = true;
    if (tableId == 0x40 || tableId == 0x41)
        attached = dvbpsi_nit_attach(handle, tableId, extension, onNit, data);
    else if (tableId == 0x42 || tableId == 0x46)
        attached = dvbpsi_sdt_attach(handle, tableId, extension, onSdt, data);
    else if (tableId == 0x4A)
        attached = dvbpsi_bat_attach(handle, tableId, extension, onBat, data);
    else if (tableId >= 0x4E && tableId <= 0x6F)
        attached = dvbpsi_eit_attach(handle, tableId, extension, onEit, data);
    else if (tableId == 0x70 || tableId == 0x73)
        attached = dvbpsi_tot_attach(handle, tableId, extension, onTot, data);
    else if (tableId == 0xC7)
        attached = dvbpsi_atsc_AttachMGT(handle, tableId, extension, onMgt, data);
    else if (tableId == 0xC8 || tableId == 0xC9)
        attached = dvbpsi_atsc_AttachVCT(handle, tableId, extension, onVct, data);
    else if (tableId == 0xCB)
        attached = dvbpsi_atsc_AttachEIT(handle, tableId, extension, onAtscEit, data);
    else if (tableId == 0xCC)
        attached = dvbpsi_atsc_AttachETT(handle, tableId, extension, onEtt, data);
    else if (tableId == 0xCD)
        attached = dvbpsi_atsc_AttachSTT(handle, tableId, extension, onStt, data);
    else if (tableId != 0x72)  // stuffing
        lines(data).insert("unknown table " + hex(tableId));
    if (!attached)
        lines(data).insert("! cannot attach " + hex(tableId));
}

static void onMessage(dvbpsi_t* handle, dvbpsi_msg_level_t, const char* message) {
    lines(handle->p_sys).insert(std::string("! ") + message);
}

/** All lines, those of languages too. */
static Lines decode(const Bytes& stream, unsigned pid, PidUse use, unsigned programme) {
    Lines found;
    dvbpsi_t* handle = dvbpsi_new(onMessage, DVBPSI_MSG_WARN);
    handle->p_sys = &found;
    switch (use) {
        case PidUse::Pat:
            dvbpsi_pat_attach(handle, onPat, &found);
            break;
        case PidUse::Cat:
            dvbpsi_cat_attach(handle, onCat, &found);
            break;
        case PidUse::Pmt:
            dvbpsi_pmt_attach(handle, static_cast<uint16_t>(programme), onPmt, &found);
            break;
        case PidUse::Rst:
            dvbpsi_rst_attach(handle, onRst, &found);
            break;
        case PidUse::Service:
            dvbpsi_AttachDemux(handle, onSubtable, &found);
            break;
    }
    for (const PacketView& packet : packetsOf(stream))
        if (packet.pid() == pid)
            dvbpsi_packet_push(handle, const_cast<uint8_t*>(packet.at));
    switch (use) {
        case PidUse::Pat:
            dvbpsi_pat_detach(handle);
            break;
        case PidUse::Cat:
            dvbpsi_cat_detach(handle);
            break;
        case PidUse::Pmt:
            dvbpsi_pmt_detach(handle);
            break;
        case PidUse::Rst:
            dvbpsi_rst_detach(handle);
            break;
        case PidUse::Service:
            dvbpsi_DetachDemux(handle);
            break;
    }
    dvbpsi_delete(handle);
    return found;
}

std::set<std::string> decodeTables(const Bytes& stream, unsigned pid, PidUse use,
                                   unsigned programme) {
    Lines tables;
    for (const std::string& line : decode(stream, pid, use, programme))
        if (line.rfind(languageLine, 0) != 0)
            tables.insert(line);
    return tables;
}

std::set<std::string> decodeLanguages(const Bytes& stream, unsigned pid, PidUse use,
                                      unsigned programme) {
    Lines languages;
    for (const std::string& line : decode(stream, pid, use, programme))
        if (line.rfind(languageLine, 0) == 0)
            languages.insert(line.substr(strlen(languageLine)));
    return languages;
}

}  // namespace mkstreams
