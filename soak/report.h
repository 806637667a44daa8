#ifndef SOAK_REPORT_H
#define SOAK_REPORT_H

#include <string>

#include "soak/soak.h"

namespace rolu_soak {

std::string Report(const Soak& soak);

// Each operation with the statement that the header makes of how long it blocks.
std::string ListOfPromises();

}  // namespace rolu_soak

#endif  // SOAK_REPORT_H
