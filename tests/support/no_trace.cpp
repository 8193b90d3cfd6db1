// The trace settings of test programs without the application's observer: tracing is off.
#include "base/src/trace.h"

constinit KX::TraceSettings KX::traceSettings{nullptr};
