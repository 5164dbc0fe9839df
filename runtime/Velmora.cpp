// The demo driver.
#include "runtime/Velmora.h"
