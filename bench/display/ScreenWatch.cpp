#include "bench/display/ScreenWatch.h"

#include <xcb/damage.h>
#include <xcb/shm.h>

#include <poll.h>
#include <sys/ipc.h>
#include <sys/shm.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>

namespace bench
{

namespace
{

[[noreturn]] void Fail(const char* what)
{
    std::fprintf(stderr, "display_bench: %s\n", what);
    std::exit(1);
}

} // namespace

double Now()
{
    timespec time = {};
    clock_gettime(CLOCK_MONOTONIC, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
}

struct ScreenWatch::Server {
    pid_t process = -1;
    std::string display;
    xcb_connection_t* connection = nullptr;
    xcb_screen_t* screen = nullptr;
    xcb_damage_damage_t damage = 0;
    uint8_t damageEvent = 0;
    xcb_shm_seg_t segment = 0;
    const uint32_t* shared = nullptr;
    ScreenPixels seen;

    void Start()
    {
        int ends[2];
        if (pipe(ends) != 0)
            Fail("no pipe");
        process = fork();
        if (process == 0) {
            close(ends[0]);
            const std::string descriptor = std::to_string(ends[1]);
            (void)!std::freopen("/dev/null", "w", stderr);
            execlp("Xvfb", "Xvfb", "-displayfd", descriptor.c_str(), "-screen", "0", "1024x768x24",
                   "-nolisten", "tcp", nullptr);
            _exit(127);
        }
        close(ends[1]);
        char number[16] = {};
        const ssize_t count = read(ends[0], number, sizeof number - 1);
        close(ends[0]);
        if (count <= 0)
            Fail("Xvfb does not start");
        display = ":" + std::to_string(std::atoi(number));
    }

    void Connect()
    {
        connection = xcb_connect(display.c_str(), nullptr);
        // Servers that start at the same time may stand in each other's way for a moment.
        for (int attempt = 0; attempt < 20 && xcb_connection_has_error(connection) != 0;
             ++attempt) {
            xcb_disconnect(connection);
            usleep(100'000);
            connection = xcb_connect(display.c_str(), nullptr);
        }
        if (xcb_connection_has_error(connection) != 0)
            Fail("no connection to Xvfb");
        screen = xcb_setup_roots_iterator(xcb_get_setup(connection)).data;
        seen.width = screen->width_in_pixels;
        seen.height = screen->height_in_pixels;
        seen.pixels.resize(size_t(seen.width) * size_t(seen.height));
        const uint32_t ground[] = {Ground};
        xcb_change_window_attributes(connection, screen->root, XCB_CW_BACK_PIXEL, ground);
        xcb_clear_area(connection, 0, screen->root, 0, 0, 0, 0);
    }

    void WatchChanges()
    {
        const xcb_query_extension_reply_t* known =
            xcb_get_extension_data(connection, &xcb_damage_id);
        if (known == nullptr || known->present == 0)
            Fail("Xvfb does not tell of changes");
        damageEvent = static_cast<uint8_t>(known->first_event + XCB_DAMAGE_NOTIFY);
        std::free(xcb_damage_query_version_reply(
            connection, xcb_damage_query_version(connection, 1, 1), nullptr));
        damage = xcb_generate_id(connection);
        xcb_damage_create(connection, damage, screen->root, XCB_DAMAGE_REPORT_LEVEL_NON_EMPTY);
    }

    void SharePixels()
    {
        const int id = shmget(IPC_PRIVATE, seen.pixels.size() * 4, IPC_CREAT | 0600);
        void* const memory = id < 0 ? nullptr : shmat(id, nullptr, 0);
        if (memory == nullptr || memory == reinterpret_cast<void*>(-1))
            Fail("no shared memory");
        segment = xcb_generate_id(connection);
        xcb_generic_error_t* const error = xcb_request_check(
            connection, xcb_shm_attach_checked(connection, segment, static_cast<uint32_t>(id), 0));
        shmctl(id, IPC_RMID, nullptr);
        if (error != nullptr)
            Fail("Xvfb shares no memory");
        shared = static_cast<const uint32_t*>(memory);
    }

    void Look()
    {
        xcb_shm_get_image_reply_t* const reply = xcb_shm_get_image_reply(
            connection,
            xcb_shm_get_image(connection, screen->root, 0, 0, static_cast<uint16_t>(seen.width),
                              static_cast<uint16_t>(seen.height), ~0u, XCB_IMAGE_FORMAT_Z_PIXMAP,
                              segment, 0),
            nullptr);
        if (reply == nullptr)
            Fail("Xvfb does not show its screen");
        std::free(reply);
        for (size_t i = 0; i < seen.pixels.size(); ++i)
            seen.pixels[i] = shared[i] & 0xFFFFFF;
    }

    bool TakeChanges()
    {
        bool changed = false;
        while (xcb_generic_event_t* const event = xcb_poll_for_event(connection)) {
            changed |= (event->response_type & 0x7F) == damageEvent;
            std::free(event);
        }
        if (xcb_connection_has_error(connection) != 0)
            Fail("Xvfb went away");
        return changed;
    }
};

ScreenWatch::ScreenWatch() : server(std::make_unique<Server>())
{
    server->Start();
    server->Connect();
    server->WatchChanges();
    server->SharePixels();
    xcb_flush(server->connection);
}

ScreenWatch::~ScreenWatch()
{
    xcb_disconnect(server->connection);
    kill(server->process, SIGTERM);
    waitpid(server->process, nullptr, 0);
}

const std::string& ScreenWatch::Display() const
{
    return server->display;
}

double ScreenWatch::Await(const std::function<bool(const ScreenPixels&)>& wished, double seconds)
{
    const double end = Now() + seconds;
    // What is there already counts too.
    double told = Now();
    bool changed = true;
    for (;;) {
        if (changed) {
            xcb_damage_subtract(server->connection, server->damage, XCB_NONE, XCB_NONE);
            server->Look();
            if (wished(server->seen))
                return told;
        }
        pollfd wait = {xcb_get_file_descriptor(server->connection), POLLIN, 0};
        changed = server->TakeChanges();
        if (!changed) {
            const int left = static_cast<int>((end - Now()) * 1000);
            if (left <= 0)
                return -1;
            (void)poll(&wait, 1, left);
            told = Now();
            changed = server->TakeChanges();
        } else {
            told = Now();
        }
    }
}

} // namespace bench
