// The floating-point output of text streams: apart from the rest because it reports to the log.
#include "base/src/auxi/auxi_fixed.h"
#include "base/src/auxi/text_stream.h"
#include "base/src/log/log.h"

namespace rkb {

namespace {

constexpr const char* source_file = "../src/auxi";

} // namespace

text_stream_t& text_stream_t::operator<<(float value)
{
    return put_real(double{value}, ftoa_limit, ftoa_reserve, float_reserve, "ftoa, too bigger");
}

text_stream_t& text_stream_t::operator<<(double value)
{
    return put_real(value, lftoa_limit, lftoa_reserve, double_reserve, "lftoa too bigger");
}

text_stream_t& text_stream_t::put_real(
    double value, double limit, size_t short_reserve, size_t long_reserve, const char* complaint)
{
    const bool is_long = value > limit;
    if (!reserve(is_long ? long_reserve : short_reserve))
        return *this;
    char* const end = is_long ? put_fixed_large(m_cursor, remaining(), value)
                              : put_fixed(m_cursor, value, limit);
    m_good = end != nullptr;
    if (end)
        end_at(end);
    else
        RKB_LOG_ASSERT(source_file, __LINE__, complaint);
    return *this;
}

} // namespace rkb
