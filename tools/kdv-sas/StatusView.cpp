#include "kdv-sas/StatusView.h"

#include <algorithm>
#include <ostream>

namespace KdvSas {
namespace {

struct Line {
    Health health;
    std::string text;
};

void collect(std::vector<Line>& lines, const char* kind, const Element& element)
{
    if (element.health != Health::Ok)
        lines.push_back({element.health, std::string(kind) + " " + element.name + ": " + element.status +
                                             (element.detail.empty() ? "" : " (" + element.detail + ")")});
}

std::vector<Line> whatIsWrong(const Machine& machine)
{
    std::vector<Line> lines;
    for (const Adapter& adapter : machine.adapters)
        collect(lines, "Adapter", adapter);
    for (const Volume& volume : machine.volumes)
        collect(lines, "Volume", volume);
    for (const Box& box : machine.boxes) {
        if (box.health != Health::Ok && box.status != "OK") collect(lines, "Box", box);
        for (const Element& sensor : box.sensors)
            if (sensor.health != Health::Ok && sensor.health != Health::Unknown)
                lines.push_back({sensor.health, "Box " + box.name + ": " + sensor.status});
    }
    for (const Disk& disk : machine.disks)
        collect(lines, "Disk", disk);
    std::stable_sort(lines.begin(), lines.end(), [](const Line& a, const Line& b) { return a.health > b.health; });
    return lines;
}

template <class Elements>
std::size_t countOf(const Elements& elements, Health health)
{
    return static_cast<std::size_t>(std::count_if(elements.begin(), elements.end(),
                                                  [&](const Element& element) { return element.health == health; }));
}

template <class Elements>
std::string summary(const Elements& elements, const char* what)
{
    std::string text = std::to_string(elements.size()) + " " + what;
    for (const Health health : {Health::Failed, Health::Degraded, Health::Unknown})
        if (const std::size_t count = countOf(elements, health))
            text += ", " + std::to_string(count) + " " + word(health);
    return text;
}

void printBox(std::ostream& out, const Machine& machine, const Box& box, bool colours)
{
    const auto used =
        std::count_if(machine.disks.begin(), machine.disks.end(), [&](const Disk& disk) { return disk.box == box.id; });
    out << "    " << coloured(box.health, word(box.health), colours) << "  Box " << box.name << ": " << used << " of "
        << box.bays << " bays in use, " << box.detail << "\n";
}

} // namespace

std::string coloured(Health health, const std::string& text, bool colours)
{
    if (!colours) return text + std::string(text.size() < 8 ? 8 - text.size() : 0, ' ');
    static constexpr const char* const codes[] = {"\033[32m", "\033[35m", "\033[33m", "\033[1;31m"};
    return codes[static_cast<int>(health)] + text + "\033[0m" + std::string(text.size() < 8 ? 8 - text.size() : 0, ' ');
}

void printStatus(std::ostream& out, const Machine& machine, bool colours)
{
    if (machine.adapters.empty()) {
        out << "The server knows no SAS adapter.\n";
        return;
    }
    const std::vector<Line> wrong = whatIsWrong(machine);
    out << "SAS storage: " << coloured(machine.worst(), word(machine.worst()), colours) << "\n";
    constexpr std::size_t most = 20; // one screen
    for (std::size_t i = 0; i < wrong.size() && i < most; ++i)
        out << "  " << coloured(wrong[i].health, word(wrong[i].health), colours) << "  " << wrong[i].text << "\n";
    if (wrong.size() > most) out << "  ... and " << wrong.size() - most << " more: see kdv-sas tree\n";
    out << "\n";
    for (const Adapter& adapter : machine.adapters) {
        out << coloured(adapter.health, word(adapter.health), colours) << "  Adapter " << adapter.name << " ("
            << adapter.detail << ")\n";
        for (const Box& box : machine.boxes)
            if (box.system == adapter.id) printBox(out, machine, box, colours);
        for (const Volume& volume : machine.volumes)
            if (volume.system == adapter.id)
                out << "    " << coloured(volume.health, word(volume.health), colours) << "  " << volume.name << ": "
                    << volume.status << ", " << volume.members.size() << " members, " << volume.detail << "\n";
        std::vector<Disk> own;
        std::copy_if(machine.disks.begin(), machine.disks.end(), std::back_inserter(own),
                     [&](const Disk& disk) { return disk.system == adapter.id; });
        out << "    " << summary(own, "disks") << "\n";
    }
}

std::string checkLine(const Machine& machine)
{
    const Health worst = machine.worst();
    std::string line = "SAS ";
    line += worst == Health::Ok         ? "OK"
            : worst == Health::Degraded ? "WARNING"
            : worst == Health::Failed   ? "CRITICAL"
                                        : "UNKNOWN";
    line += " - " + summary(machine.adapters, "adapters") + "; " + summary(machine.boxes, "boxes") + "; " +
            summary(machine.volumes, "volumes") + "; " + summary(machine.disks, "disks");
    const std::vector<Line> wrong = whatIsWrong(machine);
    for (std::size_t i = 0; i < wrong.size() && i < 3; ++i)
        line += "; " + wrong[i].text;
    if (wrong.size() > 3) line += "; and " + std::to_string(wrong.size() - 3) + " more";
    std::replace(line.begin(), line.end(), '|', '/'); // the bar begins the performance data
    return line + " | disks=" + std::to_string(machine.disks.size()) +
           " disks_failed=" + std::to_string(countOf(machine.disks, Health::Failed)) +
           " disks_degraded=" + std::to_string(countOf(machine.disks, Health::Degraded)) +
           " volumes_failed=" + std::to_string(countOf(machine.volumes, Health::Failed)) +
           " volumes_degraded=" + std::to_string(countOf(machine.volumes, Health::Degraded));
}

} // namespace KdvSas
