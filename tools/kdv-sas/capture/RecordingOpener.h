// A way to ask devices that keeps what they answer, word for word, in the form in which a captured tree has it: one set
// of files for each device. What a device says after the capture was taken is not kept. Any thread.
#pragma once

#include "capture/Captured.h"
#include "sashba/sysfs/DeviceLink.h"

#include <map>
#include <memory>
#include <mutex>
#include <string>

namespace KdvSas {

// By address ("0:0:1:0"), then by file name ("log_2f").
using DevicePages = std::map<std::string, std::map<std::string, std::string>>;

class RecordingOpener final : public KDV::DeviceOpener {
public:
    explicit RecordingOpener(std::shared_ptr<KDV::DeviceOpener> asked);
    ~RecordingOpener() override;

    std::unique_ptr<KDV::DeviceLink> open(const KDV::AskedDevice& device, std::chrono::milliseconds deadline,
                                          KDV::ReadyReply& reply) override;

    DevicePages pages() const;

    class Notebook; // shared with links that may outlive this

private:
    std::shared_ptr<KDV::DeviceOpener> _asked;
    std::shared_ptr<Notebook> _notebook;
};

} // namespace KdvSas
