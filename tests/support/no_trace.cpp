// Test programs without the application's trace observer trace to nobody.
#include "trace.h"

constinit KX::TraceSettings KX::traceSettings{nullptr};
