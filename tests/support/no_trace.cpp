// Test programs without the application's trace observer trace to nobody.
#include "base/src/trace.h"

constinit KX::TraceSettings KX::traceSettings{nullptr};
