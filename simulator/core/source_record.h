/* The description of QLX_Source, for the families that take one. */
#ifndef SIMULATOR_CORE_SOURCE_RECORD_H
#define SIMULATOR_CORE_SOURCE_RECORD_H

#include "platform/qlx_source.h"
#include "simulator/core/record.h"

namespace sim {

SIM_RECORD(QLX_Source, SIM_MEMBER(QLX_Source, eSourceType), SIM_MEMBER(QLX_Source, uSourceIndex),
           SIM_MEMBER(QLX_Source, eInputClass))

}  // namespace sim

#endif
