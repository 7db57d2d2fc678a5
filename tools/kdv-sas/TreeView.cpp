#include "kdv-sas/TreeView.h"

#include "kdv-sas/StatusView.h"

#include <functional>
#include <map>
#include <ostream>

namespace KdvSas {
namespace {

struct Node {
    const Element* element;
    std::string kind;
    std::vector<Node> children;
};

void print(std::ostream& out, const std::vector<Node>& nodes, const std::string& indent, bool colours)
{
    for (std::size_t i = 0; i < nodes.size(); ++i) {
        const bool last = i + 1 == nodes.size();
        const Element& element = *nodes[i].element;
        out << indent << (last ? "└─ " : "├─ ");
        out << coloured(element.health, word(element.health), colours) << " " << nodes[i].kind << " " << element.name
            << ": " << element.status << (element.detail.empty() ? "" : ", " + element.detail) << "\n";
        print(out, nodes[i].children, indent + (last ? "   " : "│  "), colours);
    }
}

} // namespace

void printTree(std::ostream& out, const Machine& machine, bool colours)
{
    std::map<std::string, std::vector<const Disk*>> byBox;
    std::map<std::string, const Disk*> byId;
    for (const Disk& disk : machine.disks) {
        byBox[disk.system + "\n" + disk.box].push_back(&disk);
        byId[disk.id] = &disk;
    }
    std::vector<Node> roots;
    for (const Adapter& adapter : machine.adapters) {
        Node node{&adapter, "Adapter", {}};
        for (const Box& box : machine.boxes) {
            if (box.system != adapter.id) continue;
            Node boxNode{&box, "Box", {}};
            for (const Element& sensor : box.sensors)
                boxNode.children.push_back({&sensor, "Sensor", {}});
            for (const Disk* disk : byBox[adapter.id + "\n" + box.id])
                boxNode.children.push_back({disk, "Disk (" + disk->use + ")", {}});
            node.children.push_back(std::move(boxNode));
        }
        for (const Disk* disk : byBox[adapter.id + "\n"])
            node.children.push_back({disk, "Disk (" + disk->use + ")", {}});
        for (const Volume& volume : machine.volumes) {
            if (volume.system != adapter.id) continue;
            Node volumeNode{&volume, "Volume", {}};
            for (const std::string& member : volume.members)
                if (byId.count(member)) volumeNode.children.push_back({byId[member], "Member", {}});
            node.children.push_back(std::move(volumeNode));
        }
        roots.push_back(std::move(node));
    }
    print(out, roots, "", colours);
}

} // namespace KdvSas
