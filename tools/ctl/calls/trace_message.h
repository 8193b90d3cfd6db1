/* The messages in which a traced program reports its calls. Each is one message on a SOCK_SEQPACKET
 * socket of kelprobectl: a header, the path and the data. Both sides are from the same build. */
#pragma once

#include "tools/ctl/calls/hid_calls.h"

/* The environment variable with the path of the socket. */
#define TRACE_SOCKET_VARIABLE "KELPROBE_TRACE_SOCKET"

/* Longer data are cut. USB gives the length of a report in 16 bits. */
enum { TRACE_MAX_PATH = 4096, TRACE_MAX_DATA = 65535, TRACE_MAX_NAME = 32 };

/* The members are those of struct hid_call. */
struct trace_header {
    int64_t begin;
    int64_t duration;
    int32_t kind;
    int32_t result;
    int32_t usb_error;
    int32_t process; /* that made the call */
    int32_t opener;
    uint32_t device;
    uint16_t vendor_id;
    uint16_t product_id;
    uint32_t path_size; /* without a zero at the end; 0 if there is no path */
    uint32_t data_size;
    char program[TRACE_MAX_NAME]; /* name of the file that the process runs, ended by zero */
};
