#include "sim/control/control_client.h"

#include "sim/control/bench_processes.h"

#include <gio/gio.h>
#include <gio/gunixsocketaddress.h>
#include <json/reader.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <optional>

namespace sim {
namespace {

struct ObjectUnref {
    void operator()(gpointer object) const { g_object_unref(object); }
};
template <class T>
using Owned = std::unique_ptr<T, ObjectUnref>;

int fail(const std::string& error)
{
    fprintf(stderr, "kelprobe-sim: %s\n", error.c_str());
    return kNoBench;
}

std::string takeMessage(GError* error)
{
    std::string text = error ? error->message : "";
    g_clear_error(&error);
    return text;
}

// Prints an object of the answer. Returns the status if it is the last one.
std::optional<int> print(const std::string& line)
{
    Json::Value object;
    const std::unique_ptr<Json::CharReader> reader(Json::CharReaderBuilder().newCharReader());
    if (!reader->parse(line.data(), line.data() + line.size(), &object, nullptr)
        || !object.isObject())
        return fail("the bench's answer is not JSON");
    if (object["status"].isInt()) {
        if (object["error"].isString())
            fail(object["error"].asString());
        return object["status"].asInt();
    }
    if (puts(object["text"].isString() ? object["text"].asCString() : line.c_str()) != EOF
        && fflush(stdout) == 0)
        return std::nullopt;
    fprintf(stderr, "kelprobe-sim: standard output: %s\n", std::strerror(errno));
    return EXIT_FAILURE;
}

// Many other clients may connect at the same time. Returns an empty pointer and an error if that
// lasts longer than a second, and for any other reason.
Owned<GSocketConnection> connect(const std::string& path, GError** error)
{
    constexpr int kTries = 50;
    constexpr gulong kPauseUs = 20'000;
    const Owned<GSocketAddress> address(g_unix_socket_address_new(path.c_str()));
    const Owned<GSocketClient> client(g_socket_client_new());
    for (int i = 0; i < kTries; ++i) {
        g_clear_error(error);
        Owned<GSocketConnection> connection(g_socket_client_connect(
            client.get(), G_SOCKET_CONNECTABLE(address.get()), nullptr, error));
        if (connection || !g_error_matches(*error, G_IO_ERROR, G_IO_ERROR_WOULD_BLOCK))
            return connection;
        g_usleep(kPauseUs);
    }
    return nullptr;
}

int printAnswer(GInputStream* input)
{
    const Owned<GDataInputStream> lines(g_data_input_stream_new(input));
    for (;;) {
        gsize size = 0;
        GError* error = nullptr;
        char* const text = g_data_input_stream_read_line(lines.get(), &size, nullptr, &error);
        if (!text) {
            g_clear_error(&error);
            return fail("the bench has ended");
        }
        const std::string line(text, size);
        g_free(text);
        if (const std::optional<int> status = print(line))
            return *status;
    }
}

} // namespace

int sendCommand(const std::string& socket, const std::string& line)
{
    const char* const named = std::getenv(kSocketVariable);
    const std::string path = !socket.empty() ? socket : named ? named : "";
    if (path.empty())
        return fail("there is no bench here; run this in kelprobe-sim run FILE -- PROGRAM, or name "
                    "its socket with --socket");
    GError* error = nullptr;
    const Owned<GSocketConnection> connection = connect(path, &error);
    if (!connection)
        return fail("no bench has the socket " + path + ": " + takeMessage(error));
    GIOStream* const stream = G_IO_STREAM(connection.get());
    const std::string sent = line + '\n';
    // If the bench refuses the client, its answer has the reason.
    g_output_stream_write_all(
        g_io_stream_get_output_stream(stream), sent.data(), sent.size(), nullptr, nullptr, nullptr);
    return printAnswer(g_io_stream_get_input_stream(stream));
}

} // namespace sim
