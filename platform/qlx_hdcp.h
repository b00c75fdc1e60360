/* HDCP for wireless display: the service that a sending phone authenticates with. */
#ifndef PLATFORM_QLX_HDCP_H
#define PLATFORM_QLX_HDCP_H

#include "platform/qlx_types.h"

#ifdef __cplusplus
extern "C" {
#endif

enum QLX_HDCPError {
    QLX_HDCP_ERR_INVALID_PARA = 0x101801,
};

/** What the service tells of an authentication. */
enum QLX_HDCPMiracastState {
    QLX_HDCP_MIRACAST_AUTHENTICATED = 1,
    QLX_HDCP_MIRACAST_FAILED = 2,
};

/** Parameters of the service. */
typedef struct QLX_HDCPMiracastData {
    uint32_t role;
    /** TCP port of the authentication. */
    uint32_t port;
    uint32_t reserved[24];
} QLX_HDCPMiracastData;
QLX_RECORD_SIZE(QLX_HDCPMiracastData, 104);

/**
 * Tells how an authentication went; runs on a thread of the library.
 * @param handle  the service
 * @param state   QLX_HDCPMiracastState
 */
typedef void (*QLX_HDCPMiracastCallback)(uint32_t handle, int32_t state);

/** Sets the function to call, null for none. Returns 0. */
int32_t QLX_HDCPSetMiracastHdcpStatusCallack(QLX_HDCPMiracastCallback callback);

/** Starts the service; a repeated call restarts it. Returns 0, or QLX_HDCP_ERR_INVALID_PARA for a
 *  null pointer. */
int32_t QLX_HDCPStartMiracast(const QLX_HDCPMiracastData* data);

/** Stops the service, also one that was not started. When it returns, no callback runs or will
 *  run. Returns 0, or QLX_HDCP_ERR_INVALID_PARA for a null pointer. */
int32_t QLX_HDCPStopMiracast(const QLX_HDCPMiracastData* data);

#ifdef __cplusplus
}
#endif

#endif
