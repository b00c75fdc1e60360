// A run in progress on the terminal and as a page over HTTP.
#include <errno.h>
#include <httplib.h>
#include <signal.h>
#include <stdio.h>
#include <string.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <memory>
#include <mutex>
#include <thread>

#include "tools/report/follow.h"

namespace report {

namespace {

const useconds_t pollUs = 250000;
/** Lines of a log come at most this often when standard output is no terminal: in polls. */
const unsigned pollsALine = 40;
/** So many readers are answered at once; the others wait. */
const size_t readers = 32;
/** Seconds for which a reader may keep one of them waiting for its next byte. */
const time_t patience_s = 2;
const size_t longestBody = 1024;

volatile sig_atomic_t interrupted = 0;
void onInterrupt(int) {
    interrupted = 1;
}

/** Serves the latest progress, read-only. */
class Server {
 public:
    Server(const HttpAddress& address, const Progress& progress) : progress_(progress) {
        server_.new_task_queue = [] { return new httplib::ThreadPool(readers); };
        server_.set_read_timeout(patience_s);
        server_.set_write_timeout(patience_s);
        server_.set_keep_alive_max_count(1);
        server_.set_payload_max_length(longestBody);
        server_.set_default_headers({{"Cache-Control", "no-store"},
                                     {"X-Content-Type-Options", "nosniff"},
                                     {"Content-Security-Policy",
                                      "default-src 'none'; connect-src 'self'; img-src data:; "
                                      "style-src 'unsafe-inline'; script-src 'unsafe-inline'"}});
        server_.Get("/", [this](const httplib::Request&, httplib::Response& response) {
            response.set_content(htmlOf(snapshot()), "text/html; charset=utf-8");
        });
        server_.Get("/status.json", [this](const httplib::Request&, httplib::Response& response) {
            response.set_content(jsonOf(snapshot()), "application/json");
        });
        server_.set_error_handler([](const httplib::Request&, httplib::Response& response) {
            response.set_content("There are / and /status.json, to be read.\n", "text/plain");
        });
        int port = address.port;
        bool bound = port == 0 ? (port = server_.bind_to_any_port(address.host.c_str())) > 0
                               : server_.bind_to_port(address.host.c_str(), port);
        if (!bound)
            throw Error(address.host + ":" + std::to_string(address.port) +
                        ": cannot be listened at: " + strerror(errno));
        thread_ = std::thread([this] { listening_ = server_.listen_after_bind(); });
        // A stop before it runs would be lost.
        while (listening_ && !server_.is_running())
            usleep(1000);
        bool colon = address.host.find(':') != std::string::npos;
        printf("page: http://%s%s%s:%d/\n", colon ? "[" : "", address.host.c_str(),
               colon ? "]" : "", port);
        fflush(stdout);
    }
    ~Server() {
        server_.stop();
        thread_.join();
    }
    Server(const Server&) = delete;
    Server& operator=(const Server&) = delete;

    void set(const Progress& progress) {
        std::lock_guard<std::mutex> lock(mutex_);
        progress_ = progress;
    }

 private:
    Progress snapshot() {
        std::lock_guard<std::mutex> lock(mutex_);
        return progress_;
    }

    std::mutex mutex_;
    Progress progress_;
    httplib::Server server_;
    std::atomic<bool> listening_{true};
    std::thread thread_;
};

/** Shows the progress: on a terminal in place of what stood there, else line by line. */
void show(const Progress& progress, bool always) {
    static unsigned polls = 0;
    static int drawn = 0;
    std::string text = textOf(progress);
    if (isatty(STDOUT_FILENO)) {
        if (drawn > 0)
            printf("\033[%dA\033[J", drawn);
        drawn = static_cast<int>(std::count(text.begin(), text.end(), '\n'));
        // A line that wraps would put the count out.
        printf("\033[?7l%s\033[?7h", text.c_str());
    } else if (polls++ % pollsALine == 0 || always) {
        fputs(text.c_str(), stdout);
    }
    fflush(stdout);
}

}  // namespace

bool readHttpAddress(const std::string& text, HttpAddress* address) {
    size_t colon = text.rfind(':');
    std::string port = colon == std::string::npos ? text : text.substr(colon + 1);
    if (port.empty() || port.size() > 5 || port.find_first_not_of("0123456789") != port.npos)
        return false;
    address->port = std::stoi(port);
    if (colon != std::string::npos)
        address->host = text.substr(0, colon);
    bool bracketed =
        address->host.size() > 2 && address->host.front() == '[' && address->host.back() == ']';
    if (bracketed)
        address->host = address->host.substr(1, address->host.size() - 2);
    else if (address->host.find(':') != std::string::npos)
        return false;
    return address->port <= 65535 && !address->host.empty();
}

void watch(const std::filesystem::path& folder, const std::filesystem::path& durations,
           const HttpAddress* http, bool once) {
    Follower follower(folder, durations);
    follower.poll();
    if (once) {
        fputs(textOf(follower.progress()).c_str(), stdout);
        return;
    }
    signal(SIGINT, onInterrupt);
    signal(SIGTERM, onInterrupt);
    // A reader that goes away is its own affair.
    signal(SIGPIPE, SIG_IGN);
    std::unique_ptr<Server> server;
    if (http != nullptr)
        server = std::make_unique<Server>(*http, follower.progress());
    while (!interrupted) {
        bool wasOver = follower.progress().over;
        follower.poll();
        const Progress& progress = follower.progress();
        if (server)
            server->set(progress);
        if (!server || !wasOver || !progress.over)
            show(progress, progress.over && !wasOver);
        if (!server && progress.over)
            break;
        usleep(pollUs);
    }
}

}  // namespace report
