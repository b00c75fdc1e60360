/* Reference data from stream files, and comparisons of what was delivered with them. */
#ifndef TESTCASE_DEMUX_DEMUX_REFERENCE_H
#define TESTCASE_DEMUX_DEMUX_REFERENCE_H

#include <stdint.h>

#include "testcase/demux/demux_request.h"
#include "testcase/demux/ts_reader.h"

/**
 * Rebuilds the first section of a file that the filter accepts; the search ends at the file's end.
 * @param pstConfigured     the filter, or null
 * @param pRequestInfo      the request, or null
 * @param file_sectionData  receives the section, to be freed by Demux_FreeTsData; length 0, or part
 *                          of a section, when the file holds no whole one or cannot be read
 * @param path              the file
 */
void Demux_ReadTsData(const QLX_SectionFilterParams* pstConfigured,
                      const RequestInfo_st* pRequestInfo, SectionData_st* file_sectionData,
                      const char* path);

/** The same for the first packet of the PID, with its 188 or 204 bytes. */
void Demux_ReadTsPacketData(const QLX_SectionFilterParams* pstConfigured,
                            const RequestInfo_st* pRequestInfo, SectionData_st* file_sectionData,
                            const char* path);

/** Frees the bytes and clears the record. */
void Demux_FreeTsData(SectionData_st* file_sectionData);

/** Compares as many bytes as were delivered; the lengths themselves may differ. The reference is
 * one of Demux_ReadTsData, with its whole buffer. 0; -1 for a difference, or when either has none.
 */
int32_t Demux_CompareData2(const SectionData_st* delivered, const SectionData_st* reference);

/** Compares the first byte with a table id. 0 or -1. */
int32_t Demux_CompareTableId(const SectionData_st* delivered, uint8_t tableId);

/** Compares packets over the reference's length but for byte 3, where the continuity counter
 *  stands. 0; -1 for a difference, or when either has none or fewer were delivered. */
int32_t Demux_ComparePacketData(const SectionData_st* delivered, const SectionData_st* reference);

#endif
