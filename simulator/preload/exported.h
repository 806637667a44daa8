#pragma once

// The object hides all but what it wraps.
#define ROLU_SIM_EXPORTED [[gnu::visibility("default")]]
