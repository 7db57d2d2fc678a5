// A machine that kdv-cimhost serves, and what a client does to have its alerts: filters, destinations and subscriptions
// made with CIM-XML messages in interop.
#pragma once

#include "hostprogram/MachineFile.h"
#include "hostprogram/ServedMachine.h"
#include "listenertest/TestListener.h"

#include <ostream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace KDV::Host::Test {

// What the tests look at in an alert.
struct Alert {
    std::string event;
    std::string element; // class and the key that tells elements apart
    std::string severity;
};
bool operator==(const Alert& left, const Alert& right);
std::ostream& operator<<(std::ostream& out, const Alert& alert);

std::vector<Alert> alertsOf(const std::vector<TestListener::Message>& messages);

// Messages of one destination: one context, numbers from `first` on without a gap.
testing::AssertionResult numberedInOrder(const std::vector<TestListener::Message>& messages, unsigned first = 0);

struct Subscribed {
    std::string destination; // <INSTANCENAME> each
    std::string subscription;
};

class AlertsFixture : public testing::Test {
protected:
    ~AlertsFixture() override;

    // Each gives the <INSTANCENAME> of what was made.
    std::string create(const std::string& ofClass, const std::string& properties) const;
    std::string staticFilter() const;
    std::string makeFilter(const std::string& name, const std::string& language, const std::string& query) const;
    Subscribed subscribe(const TestListener& listener, const std::string& name, const std::string& filter = {}) const;
    void remove(const std::string& instanceName) const;

    // Starts the host on the machine of the file and makes one pass after each change of it.
    void serveFile() { machine.start(file.path().string()); }
    void pass()
    {
        file.write();
        machine.performWork();
    }

    ServedMachine machine;
    MachineFile file{machine.folder() / "machine.json", "default.json"};
};

std::string property(const std::string& name, const std::string& type, const std::string& text);

} // namespace KDV::Host::Test
