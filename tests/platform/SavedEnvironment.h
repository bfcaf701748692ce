#pragma once

#include <QByteArray>
#include <map>

namespace kestrin::test {

/// Puts variables back as they were when the test began.
class SavedEnvironment {
public:
    SavedEnvironment(std::initializer_list<const char*> names) {
        for (const char* name : names)
            saved_.emplace(name, qEnvironmentVariableIsSet(name) ? qgetenv(name) : QByteArray());
    }
    ~SavedEnvironment() {
        for (const auto& [name, value] : saved_) {
            if (value.isNull())
                qunsetenv(name);
            else
                qputenv(name, value);
        }
    }
    SavedEnvironment(const SavedEnvironment&) = delete;
    SavedEnvironment& operator=(const SavedEnvironment&) = delete;

private:
    std::map<const char*, QByteArray> saved_;
};

} // namespace kestrin::test
