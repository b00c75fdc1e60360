/* The panel. Any thread may call, in any state of the other services; no callbacks. */
#ifndef PLATFORM_QLX_DISPLAY_H
#define PLATFORM_QLX_DISPLAY_H

#include "platform/qlx_types.h"

#ifdef __cplusplus
extern "C" {
#endif

enum QLX_DisplayError {
    QLX_DISPLAY_ERR_INVALID_PARA = 0x101A01,
};

/** Size of the panel in pixels. */
typedef struct QLX_PanelInfo {
    uint16_t uWidth;
    uint16_t uHeight;
} QLX_PanelInfo;
QLX_RECORD_SIZE(QLX_PanelInfo, 4);

/** Tells the panel's size. Returns 0; QLX_DISPLAY_ERR_INVALID_PARA for a null pointer. */
int32_t QLX_DisplayGetPanelInfo(QLX_PanelInfo* pstPanelInfo);

#ifdef __cplusplus
}
#endif

#endif
