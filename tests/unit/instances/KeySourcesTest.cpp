// A collection finds objects by their paths without asking them all, and learns of changed paths from the record bytes
// that each class declares. Any byte of any record may change: whatever then is an object's path must find it.
#include "InstanceFixture.h"
#include "broker/PathObject.h"
#include "broker/ResultObject.h"
#include "cmpicpp/CmpiContext.h"
#include "common/CmpiManagedInstanceCollection.h"
#include "golden/PublishedClasses.h"

#include <algorithm>
#include <random>

namespace KDV::Test {
namespace {

using namespace CmpiCpp;

struct Bytes {
    unsigned char* first;
    std::size_t count;
};

class KeySources : public InstanceFixture {
protected:
    // All bytes but the links, which the data library alone may change.
    std::vector<Bytes> records() const
    {
        return {bytes(hba, offsetof(SasHbaRecord, gap20)), bytes(volume, offsetof(SasLogicalDriveRecord, hbaNumber)),
                bytes(box, offsetof(SasStorageBoxRecord, gap4)),
                bytes(drive, offsetof(SasPhysicalDriveRecord, hbaNumber))};
    }

    template <class Record>
    static Bytes bytes(Record* record, std::size_t from)
    {
        return {reinterpret_cast<unsigned char*>(record) + from, sizeof(Record) - from};
    }

    bool finds(CmpiManagedInstanceCollection& collection, const CmpiObjectPath& path)
    {
        Host::CollectingSink sink;
        Host::ResultObject result(broker, sink);
        return collection.getInstance(CmpiInstanceResult(result.cmpi()), CmpiContext(&scope.context()), path, nullptr);
    }
};

TEST_F(KeySources, LetEveryObjectBeFoundWhicheverByteOfItsRecordsChanges)
{
    // Texts with words in them, so that changes inside of them reach the parts of a position.
    put(drive->location, "Port 1I Box 1 Bay 3");
    put(box->name, "Port 1E Box 2");
    std::mt19937 random(1);
    std::size_t moved = 0;
    for (const PublishedClass& published : publishedClasses()) {
        const auto object = published.make(logger, given).release();
        CmpiManagedInstanceCollection collection(logger);
        collection.createInstance(object);
        for (const Bytes& record : records()) {
            for (std::size_t i = 0; i < record.count; ++i) {
                const CmpiObjectPath before = object->getPath();
                const unsigned char byte = record.first[i];
                record.first[i] = static_cast<unsigned char>(byte + 1 + random() % 255);
                collection.refreshed();
                const CmpiObjectPath after = object->getPath();
                if (before != after) {
                    ++moved;
                    ASSERT_TRUE(finds(collection, after)) << published.name << " is lost by byte " << i;
                    ASSERT_FALSE(finds(collection, before)) << published.name << " is still there after byte " << i;
                }
                record.first[i] = byte;
                collection.refreshed();
            }
            ASSERT_TRUE(finds(collection, object->getPath())) << published.name;
        }
    }
    EXPECT_GT(moved, 400u); // names and serial numbers are keys of many classes
}

TEST_F(KeySources, LetEveryObjectBeFoundAfterManyChangesAtOnce)
{
    CmpiManagedInstanceCollection collection(logger);
    std::vector<CmpiManagedInstance*> objects;
    for (const PublishedClass& published : publishedClasses()) {
        objects.push_back(published.make(logger, given).release());
        collection.createInstance(objects.back());
    }
    std::mt19937 random(2);
    for (int round = 0; round < 200; ++round) {
        for (const Bytes& record : records())
            for (auto changes = random() % 40; changes > 0; --changes)
                record.first[random() % record.count] = static_cast<unsigned char>(random() % 128);
        collection.refreshed();
        for (const CmpiManagedInstance* object : objects)
            ASSERT_TRUE(finds(collection, object->getPath())) << object->getClassName() << " in round " << round;
    }
}

// What a class keeps from its construction moves nothing.
TEST_F(KeySources, LeaveThePathsThatAreKeptAlone)
{
    for (const char* name : {"KDV_SASArraySystem", "KDV_SASPrimordialPool", "KDV_SASPrimordialPoolNoRaid",
                             "KDV_SASStoragePool", "KDV_SASStorageCapabilities", "KDV_SASStorageSpecificCollection",
                             "KDV_SASStorageEnclosure", "KDV_SASDriveCage", "KDV_SASStorageEnclosureProcessor"}) {
        const auto& classes = publishedClasses();
        const auto published = std::find_if(classes.begin(), classes.end(),
                                            [&](const PublishedClass& candidate) { return candidate.name == name; });
        ASSERT_NE(published, classes.end()) << name;
        const auto object = published->make(logger, given);
        const std::string before = object->getPath().str();
        for (const Bytes& record : records())
            for (std::size_t i = 0; i < record.count; ++i)
                record.first[i] ^= 0x55;
        EXPECT_EQ(object->getPath().str(), before) << name;
    }
}

} // namespace
} // namespace KDV::Test
