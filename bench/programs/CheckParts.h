#pragma once

#include "fakes/ScriptedResolver.h"
#include "fakes/VirtualClock.h"
#include "http/CurlTransport.h"
#include "probing/BackgroundResolver.h"
#include "probing/FreshHTTPClient.h"
#include "tasks/SerialExecutor.h"
#include "tasks/Spawn.h"
#include "tasks/ThreadPool.h"

#include <chrono>
#include <future>
#include <memory>
#include <stop_token>
#include <string>
#include <utility>

namespace kestrin::bench {

/// A server on this machine, and the file with the authorities that it is to be trusted by.
struct Target {
    std::string host;
    std::string address;
    std::string port;
    std::string bundle;
};

/// What the checks of both kinds lean on, put together as the program puts it together, but for the system's name
/// look-up, which answers from a script.
class CheckParts {
public:
    explicit CheckParts(const Target& target) : transport_({target.bundle}) {
        names_->answer(target.host, {target.address});
    }

    // A thread that ended beside the process would free OpenSSL's data at the same time as the process does.
    ~CheckParts() { (void)pool_.shutDown(std::chrono::minutes(1)); }
    CheckParts(const CheckParts&) = delete;
    CheckParts& operator=(const CheckParts&) = delete;

    [[nodiscard]] Clock& clock() { return clock_; }
    [[nodiscard]] const FreshHTTPClient& client() const { return client_; }
    [[nodiscard]] const BackgroundResolver& resolver() const { return resolver_; }
    [[nodiscard]] static std::chrono::sys_seconds now() {
        return std::chrono::floor<std::chrono::seconds>(std::chrono::system_clock::now());
    }

    /// Makes a check and waits for what it gives.
    template <class Record> [[nodiscard]] Record recordOf(Task<Record> check) {
        std::promise<Record> ended;
        auto task = told(std::move(check), &ended);
        spawn(executor_, std::move(task));
        return ended.get_future().get();
    }

private:
    template <class Record> static Task<> told(Task<Record> check, std::promise<Record>* ended) {
        Record record = co_await std::move(check);
        ended->set_value(std::move(record));
    }

    VirtualClock clock_;
    ThreadPool pool_{36, std::chrono::seconds(1), 1}; ///< for everything, as in the program
    SerialExecutor executor_{pool_};
    std::shared_ptr<ScriptedResolver> names_ = std::make_shared<ScriptedResolver>();
    std::stop_source shutdown_;
    BackgroundResolver resolver_{pool_, names_, clock_, shutdown_.get_token()};
    CurlTransport transport_;
    FreshHTTPClient client_{FreshHTTPServices{executor_, clock_, pool_, transport_, resolver_}};
};

} // namespace kestrin::bench
