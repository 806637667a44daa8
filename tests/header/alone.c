#include "kavo_rolu.h"
