#include "core/kavo_info.h"

KavoInfo kavo_info{};
