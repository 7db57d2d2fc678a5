#include "sashba/scenario/ScenarioReader.h"

#include "sashba/scenario/ElementReader.h"
#include "sashba/scenario/TimelineReader.h"

#include <unordered_map>

namespace KDV {
namespace {

class MachineReader {
public:
    explicit MachineReader(Problems& problems) : _problems(problems), _elements(problems) {}

    void read(const JsonNode& hbas, Machine& machine)
    {
        if (!hbas.array()) {
            _problems.add("/hbas", "expected an array of HBAs, found " + hbas.description());
            return;
        }
        Occurrences seen;
        for (std::size_t i = 0; i < hbas.array()->size() && withinLimit(); ++i) {
            const JsonNode& node = (*hbas.array())[i];
            const std::string place = childPlace("/hbas", i);
            MachineHba& hba = machine.emplace_back();
            if (readElement(node, place, ElementKind::Hba, 0, seen, hba.hba)) readChildren(node, place, hba);
        }
        if (!withinLimit()) _problems.add("/hbas", "expected at most " + std::to_string(mostElements) + " elements");
    }

private:
    using Occurrences = std::unordered_map<std::uint32_t, std::uint32_t>;

    void readChildren(const JsonNode& node, const std::string& place, MachineHba& hba)
    {
        const std::uint32_t number = hba.hba.key.number;
        readList(node, place, "physicalDrives", ElementKind::PhysicalDrive, number, hba.physicalDrives);
        readList(node, place, "logicalDrives", ElementKind::LogicalDrive, number, hba.logicalDrives);
        readList(node, place, "storageBoxes", ElementKind::StorageBox, number, hba.storageBoxes);
    }

    template <class Record>
    void readList(const JsonNode& hba, const std::string& hbaPlace, std::string_view name, ElementKind kind,
                  std::uint32_t hbaNumber, std::vector<Element<Record>>& list)
    {
        const JsonNode* node = hba.member(name);
        if (!node) return;
        const std::string place = childPlace(hbaPlace, name);
        if (!node->array()) {
            _problems.add(place, "expected an array, found " + node->description());
            return;
        }
        Occurrences seen;
        list.reserve(node->array()->size());
        for (std::size_t i = 0; i < node->array()->size() && withinLimit(); ++i)
            readElement((*node->array())[i], childPlace(place, i), kind, hbaNumber, seen, list.emplace_back());
    }

    template <class Record>
    bool readElement(const JsonNode& node, const std::string& place, ElementKind kind, std::uint32_t hbaNumber,
                     Occurrences& seen, Element<Record>& element)
    {
        ++_count;
        auto* bytes = reinterpret_cast<unsigned char*>(&element.image);
        if (!_elements.readWhole(node, place, kind, hbaNumber, bytes, element.key.number)) return false;
        const std::uint32_t before = seen[element.key.number]++;
        if (!_elements.readFlag(node, place, "duplicateNumber", false) && before > 0)
            _problems.add(childPlace(place, numberField(kind)),
                          "expected a number that no other element of the list has; with \"duplicateNumber\": true "
                          "it may");
        element.key.occurrence = before;
        return true;
    }

    bool withinLimit() const noexcept { return _count <= mostElements; }

    Problems& _problems;
    ElementReader _elements;
    std::size_t _count = 0;
};

void readDocument(const JsonNode& root, Scenario& scenario, Problems& problems)
{
    if (!root.object()) {
        problems.add("", "expected an object with \"hbas\", found " + root.description());
        return;
    }
    const JsonNode* hbas = root.member("hbas");
    if (hbas)
        MachineReader(problems).read(*hbas, scenario.machine);
    else
        problems.add("/hbas", "expected an array of HBAs, found nothing");

    FieldReader fields(problems);
    for (const JsonMember& member : *root.object()) {
        const std::string_view name = member.name;
        if (name == "$schema" || name == "description") {
            if (!member.node.text())
                problems.add(childPlace("", name), "expected a text, found " + member.node.description());
        } else if (name != "hbas" && name != "timeline" && name != "repeatEvery") {
            fields.refuseUnknown("", name, {"hbas", "timeline", "repeatEvery", "description", "$schema"});
        }
    }
    TimelineReader(problems, scenario).read(root);
}

} // namespace

std::optional<Scenario> readScenario(std::string_view text, Problems& problems)
{
    std::pmr::monotonic_buffer_resource memory(text.size() + 4096);
    JsonNode root;
    if (!parseJson(text, memory, root, problems)) return std::nullopt;
    Scenario scenario;
    readDocument(root, scenario, problems);
    if (!problems.empty()) return std::nullopt;
    return scenario;
}

} // namespace KDV
