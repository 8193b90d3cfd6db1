// umockdev's copies of parts of a client's memory.
#pragma once

#include <umockdev.h>

#include <cstring>
#include <memory>
#include <span>

namespace sim {

struct IoctlDataUnref {
    void operator()(UMockdevIoctlData* data) const { g_object_unref(data); }
};

// For data that has to outlive the ioctl.
using IoctlDataRef = std::unique_ptr<UMockdevIoctlData, IoctlDataUnref>;

inline IoctlDataRef newReference(UMockdevIoctlData* data)
{
    g_object_ref(data);
    return IoctlDataRef(data);
}

// Follows the pointer at `offset` of `data` and returns the copy of the client's memory there.
// `data` owns the copy; both are written back to the client together. Null for a null pointer or if
// the client's memory cannot be read.
inline UMockdevIoctlData* resolve(UMockdevIoctlData* data, size_t offset, size_t length)
{
    UMockdevIoctlData* const target = umockdev_ioctl_data_resolve(data, offset, length, nullptr);
    if (target)
        g_object_unref(target); // `data` holds another reference
    return target;
}

inline std::span<uint8_t> bytesOf(UMockdevIoctlData* data)
{
    return {data->data, static_cast<size_t>(data->data_len)};
}

// Copies, because umockdev's buffers need not be aligned for T.
template <class T>
T load(UMockdevIoctlData* data)
{
    T value;
    std::memcpy(&value, data->data, sizeof value);
    return value;
}

template <class T>
void store(UMockdevIoctlData* data, const T& value)
{
    std::memcpy(data->data, &value, sizeof value);
}

} // namespace sim
