// A provider of the classes in test.mof. KDV_TEST_DISKS says how many disks there are (8 otherwise); the last one is a
// T_SolidDisk. Enumerations of T_Slow hold a lock that its getInstance needs too, as a provider of one mutex does.
#include "cmpi/ProviderTables.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <mutex>
#include <string>
#include <strings.h>

namespace {

const CMPIBroker* broker = nullptr;
std::mutex slowLock;

constexpr CMPIStatus ok{CMPI_RC_OK, nullptr};

CMPIStatus failed(CMPIrc rc, const char* text) { return {rc, broker->eft->newString(broker, text, nullptr)}; }

int diskCount()
{
    const char* given = std::getenv("KDV_TEST_DISKS");
    return given ? std::atoi(given) : 8;
}

bool isClass(const CMPIObjectPath* path, const char* name)
{
    const CMPIString* className = path->ft->getClassName(path, nullptr);
    return strcasecmp(className->ft->getCharPtr(className, nullptr), name) == 0;
}

std::string nameSpaceOf(const CMPIObjectPath* path)
{
    const CMPIString* nameSpace = path->ft->getNameSpace(path, nullptr);
    return nameSpace->ft->getCharPtr(nameSpace, nullptr);
}

const char* diskClass(int index) { return index == diskCount() - 1 ? "T_SolidDisk" : "T_Disk"; }

CMPIObjectPath* diskPath(const std::string& nameSpace, int index)
{
    CMPIObjectPath* path = broker->eft->newObjectPath(broker, nameSpace.c_str(), diskClass(index), nullptr);
    char id[32];
    std::snprintf(id, sizeof id, "D%d", index);
    path->ft->addKey(path, "SystemName", reinterpret_cast<const CMPIValue*>("test & system"), CMPI_chars);
    path->ft->addKey(path, "DeviceID", reinterpret_cast<const CMPIValue*>(id), CMPI_chars);
    return path;
}

CMPIObjectPath* boxPath(const std::string& nameSpace, const char* className, CMPIUint32 number)
{
    CMPIObjectPath* path = broker->eft->newObjectPath(broker, nameSpace.c_str(), className, nullptr);
    CMPIValue value{};
    value.uint32 = number;
    path->ft->addKey(path, "Number", &value, CMPI_uint32);
    return path;
}

void setText(CMPIInstance* instance, const char* name, const char* text)
{
    instance->ft->setProperty(instance, name, reinterpret_cast<const CMPIValue*>(text), CMPI_chars);
}

template <class Member>
void set(CMPIInstance* instance, const char* name, Member CMPIValue::*member, Member number, CMPIType type)
{
    CMPIValue value{};
    value.*member = number;
    instance->ft->setProperty(instance, name, &value, type);
}

void setStatus(CMPIInstance* instance)
{
    CMPIArray* array = broker->eft->newArray(broker, 2, CMPI_uint16, nullptr);
    CMPIValue value{};
    value.uint16 = 2;
    array->ft->setElementAt(array, 0, &value, CMPI_uint16); // the second stays NULL
    value.array = array;
    instance->ft->setProperty(instance, "OperationalStatus", &value, CMPI_uint16A);
    array->ft->release(array);
}

void setTexts(CMPIInstance* instance)
{
    CMPIArray* array = broker->eft->newArray(broker, 2, CMPI_string, nullptr);
    const char* texts[] = {"one", "two < three"};
    for (CMPICount i = 0; i < 2; ++i) {
        CMPIValue value{};
        value.string = broker->eft->newString(broker, texts[i], nullptr);
        array->ft->setElementAt(array, i, &value, CMPI_string);
    }
    CMPIValue value{};
    value.array = array;
    instance->ft->setProperty(instance, "Texts", &value, CMPI_stringA);
    array->ft->release(array);
}

void setNumbers(CMPIInstance* instance, int index)
{
    set(instance, "Hot", &CMPIValue::boolean, CMPIBoolean{1}, CMPI_boolean);
    set(instance, "U8", &CMPIValue::uint8, CMPIUint8{255}, CMPI_uint8);
    set(instance, "U16", &CMPIValue::uint16, CMPIUint16{32768}, CMPI_uint16);
    set(instance, "U32", &CMPIValue::uint32, static_cast<CMPIUint32>(index), CMPI_uint32);
    set(instance, "U64", &CMPIValue::uint64, CMPIUint64{18446744073709551615u}, CMPI_uint64);
    set(instance, "S8", &CMPIValue::sint8, CMPISint8{-128}, CMPI_sint8);
    set(instance, "S16", &CMPIValue::sint16, CMPISint16{-5}, CMPI_sint16);
    set(instance, "S32", &CMPIValue::sint32, CMPISint32{-70000}, CMPI_sint32);
    set(instance, "S64", &CMPIValue::sint64, CMPISint64{-5000000000}, CMPI_sint64);
    set(instance, "R32", &CMPIValue::real32, CMPIReal32{0.5f}, CMPI_real32);
    set(instance, "R64", &CMPIValue::real64, CMPIReal64{-1.25e300}, CMPI_real64);
    set(instance, "Letter", &CMPIValue::char16, CMPIChar16{0xE4}, CMPI_char16);
    CMPIValue value{};
    value.dateTime = broker->eft->newDateTimeFromChars(broker, "20260102030405.000006+060", nullptr);
    instance->ft->setProperty(instance, "When", &value, CMPI_dateTime);
}

CMPIInstance* diskInstance(const std::string& nameSpace, int index)
{
    CMPIObjectPath* path = diskPath(nameSpace, index);
    CMPIInstance* instance = broker->eft->newInstance(broker, path, nullptr);
    char id[32];
    std::snprintf(id, sizeof id, "D%d", index);
    setText(instance, "SystemName", "test & system");
    setText(instance, "DeviceID", id);
    setText(instance, "ElementName",
            index == 0 ? "bad \xff\xc3( \x01 \"<&>\r\n\tend \xe2\x82\xac" : "Port:1 Box:2 Bay:3");
    setStatus(instance);
    setText(instance, "Description", "SAS");
    setText(instance, "Model", "ZT TEST 1000");
    setText(instance, "Vendor", "ZT");
    setTexts(instance);
    setNumbers(instance, index);
    setText(instance, "Firmware", "1.00");
    setText(instance, "Serial", id);
    instance->ft->setProperty(instance, "NotSet", nullptr, CMPI_string);
    path->ft->release(path);
    return instance;
}

CMPIInstance* boxInstance(const std::string& nameSpace, const char* className, CMPIUint32 number)
{
    CMPIObjectPath* path = boxPath(nameSpace, className, number);
    CMPIInstance* instance = broker->eft->newInstance(broker, path, nullptr);
    set(instance, "Number", &CMPIValue::uint32, number, CMPI_uint32);
    setText(instance, "ElementName", std::string(2000, 'x').c_str());
    path->ft->release(path);
    return instance;
}

CMPIObjectPath* linkPath(const std::string& nameSpace, int disk)
{
    CMPIObjectPath* path = broker->eft->newObjectPath(broker, nameSpace.c_str(), "T_BoxDisk", nullptr);
    CMPIValue value{};
    value.ref = boxPath(nameSpace, "T_Box", 1);
    path->ft->addKey(path, "GroupComponent", &value, CMPI_ref);
    value.ref = diskPath(nameSpace, disk);
    path->ft->addKey(path, "PartComponent", &value, CMPI_ref);
    return path;
}

CMPIInstance* linkInstance(const std::string& nameSpace, int disk)
{
    CMPIInstance* instance = broker->eft->newInstance(broker, linkPath(nameSpace, disk), nullptr);
    CMPIValue value{};
    value.ref = boxPath(nameSpace, "T_Box", 1);
    instance->ft->setProperty(instance, "GroupComponent", &value, CMPI_ref);
    value.ref = diskPath(nameSpace, disk);
    instance->ft->setProperty(instance, "PartComponent", &value, CMPI_ref);
    return instance;
}

CMPIStatus send(const CMPIResult* result, CMPIInstance* instance)
{
    const CMPIStatus status = result->ft->returnInstance(result, instance);
    instance->ft->release(instance);
    return status;
}

CMPIStatus send(const CMPIResult* result, CMPIObjectPath* path)
{
    const CMPIStatus status = result->ft->returnObjectPath(result, path);
    path->ft->release(path);
    return status;
}

// Calls `each` for what the class has, until a result is not taken.
template <class Each>
CMPIStatus forAll(const CMPIObjectPath* classPath, Each each)
{
    const std::string nameSpace = nameSpaceOf(classPath);
    CMPIStatus status = ok;
    const bool solid = isClass(classPath, "T_SolidDisk");
    if (solid || isClass(classPath, "T_Disk"))
        // The subclass comes too, as from a provider that looks at what its classes are.
        for (int i = solid ? diskCount() - 1 : 0; i < diskCount() && status.rc == CMPI_RC_OK; ++i)
            status = each(nameSpace, "T_Disk", i);
    if (isClass(classPath, "T_Box")) status = each(nameSpace, "T_Box", 1);
    if (isClass(classPath, "T_BoxDisk"))
        for (int i = 0; i < diskCount() && status.rc == CMPI_RC_OK; ++i)
            status = each(nameSpace, "T_BoxDisk", i);
    if (isClass(classPath, "T_FailsEarly")) {
        each(nameSpace, "T_FailsEarly", 1);
        return failed(CMPI_RC_ERR_FAILED, "no more \"disks\" & that is <all>");
    }
    if (isClass(classPath, "T_FailsLate")) {
        for (int i = 0; i < 500 && status.rc == CMPI_RC_OK; ++i)
            status = each(nameSpace, "T_FailsLate", i);
        return failed(CMPI_RC_ERR_ACCESS_DENIED, "late & sorry");
    }
    if (isClass(classPath, "T_Slow")) {
        const std::lock_guard<std::mutex> lock(slowLock);
        for (int i = 0; i < 5000 && status.rc == CMPI_RC_OK; ++i)
            status = each(nameSpace, "T_Slow", i);
    }
    return status;
}

CMPIInstance* makeInstance(const std::string& nameSpace, const char* className, int index)
{
    if (std::strcmp(className, "T_Disk") == 0) return diskInstance(nameSpace, index);
    if (std::strcmp(className, "T_BoxDisk") == 0) return linkInstance(nameSpace, index);
    return boxInstance(nameSpace, className, static_cast<CMPIUint32>(index));
}

CMPIObjectPath* makePath(const std::string& nameSpace, const char* className, int index)
{
    if (std::strcmp(className, "T_Disk") == 0) return diskPath(nameSpace, index);
    if (std::strcmp(className, "T_BoxDisk") == 0) return linkPath(nameSpace, index);
    return boxPath(nameSpace, className, static_cast<CMPIUint32>(index));
}

CMPIStatus cleanup(CMPIInstanceMI*, const CMPIContext*, CMPIBoolean) { return ok; }
CMPIStatus cleanup(CMPIAssociationMI*, const CMPIContext*, CMPIBoolean) { return ok; }
CMPIStatus cleanup(CMPIMethodMI*, const CMPIContext*, CMPIBoolean) { return ok; }

CMPIStatus enumerateInstanceNames(CMPIInstanceMI*, const CMPIContext*, const CMPIResult* result,
                                  const CMPIObjectPath* classPath)
{
    return forAll(classPath, [&](const std::string& nameSpace, const char* className, int index) {
        return send(result, makePath(nameSpace, className, index));
    });
}

CMPIStatus enumerateInstances(CMPIInstanceMI*, const CMPIContext*, const CMPIResult* result,
                              const CMPIObjectPath* classPath, const char**)
{
    return forAll(classPath, [&](const std::string& nameSpace, const char* className, int index) {
        return send(result, makeInstance(nameSpace, className, index));
    });
}

// Number of the disk in a path, -1 if it is none of ours.
int diskIndex(const CMPIObjectPath* path)
{
    CMPIStatus status = ok;
    const CMPIData key = path->ft->getKey(path, "DeviceID", &status);
    if (status.rc != CMPI_RC_OK || key.type != CMPI_string) return -1;
    const char* text = key.value.string->ft->getCharPtr(key.value.string, nullptr);
    const int index = text[0] == 'D' ? std::atoi(text + 1) : -1;
    return index >= 0 && index < diskCount() && isClass(path, diskClass(index)) ? index : -1;
}

CMPIStatus getInstance(CMPIInstanceMI*, const CMPIContext*, const CMPIResult* result, const CMPIObjectPath* path,
                       const char**)
{
    const std::string nameSpace = nameSpaceOf(path);
    if (isClass(path, "T_Slow")) {
        const std::lock_guard<std::mutex> lock(slowLock);
        return send(result, boxInstance(nameSpace, "T_Slow", 1));
    }
    if (const int index = diskIndex(path); index >= 0) return send(result, diskInstance(nameSpace, index));
    CMPIStatus status = ok;
    const CMPIData key = path->ft->getKey(path, "Number", &status);
    if (isClass(path, "T_Box") && status.rc == CMPI_RC_OK && key.value.uint64 == 1)
        return send(result, boxInstance(nameSpace, "T_Box", 1));
    return failed(CMPI_RC_ERR_NOT_FOUND, "no such instance");
}

template <class... Any>
CMPIStatus notSupported(Any...)
{
    return {CMPI_RC_ERR_NOT_SUPPORTED, nullptr};
}

// From the box to its disks and back; `near` is the role of the given end.
template <class Each>
CMPIStatus follow(const CMPIObjectPath* path, const char* role, const char* resultRole, Each each)
{
    const bool fromBox = isClass(path, "T_Box");
    const char* near = fromBox ? "GroupComponent" : "PartComponent";
    const char* far = fromBox ? "PartComponent" : "GroupComponent";
    if ((role && strcasecmp(role, near) != 0) || (resultRole && strcasecmp(resultRole, far) != 0)) return ok;
    const std::string nameSpace = nameSpaceOf(path);
    CMPIStatus status = ok;
    if (fromBox)
        for (int i = 0; i < diskCount() && status.rc == CMPI_RC_OK; ++i)
            status = each(nameSpace, "T_Disk", i);
    else if (const int index = diskIndex(path); index >= 0)
        status = each(nameSpace, "T_Box", 1);
    return status;
}

CMPIStatus associators(CMPIAssociationMI*, const CMPIContext*, const CMPIResult* result, const CMPIObjectPath* path,
                       const char*, const char*, const char* role, const char* resultRole, const char**)
{
    return follow(path, role, resultRole, [&](const std::string& nameSpace, const char* className, int index) {
        return send(result, makeInstance(nameSpace, className, index));
    });
}

CMPIStatus associatorNames(CMPIAssociationMI*, const CMPIContext*, const CMPIResult* result, const CMPIObjectPath* path,
                           const char*, const char*, const char* role, const char* resultRole)
{
    return follow(path, role, resultRole, [&](const std::string& nameSpace, const char* className, int index) {
        return send(result, makePath(nameSpace, className, index));
    });
}

CMPIStatus references(CMPIAssociationMI*, const CMPIContext*, const CMPIResult* result, const CMPIObjectPath* path,
                      const char*, const char* role, const char**)
{
    const int disk = diskIndex(path);
    return follow(path, role, nullptr, [&](const std::string& nameSpace, const char*, int index) {
        return send(result, linkInstance(nameSpace, disk < 0 ? index : disk));
    });
}

CMPIStatus referenceNames(CMPIAssociationMI*, const CMPIContext*, const CMPIResult* result, const CMPIObjectPath* path,
                          const char*, const char* role)
{
    const int disk = diskIndex(path);
    return follow(path, role, nullptr, [&](const std::string& nameSpace, const char*, int index) {
        return send(result, linkPath(nameSpace, disk < 0 ? index : disk));
    });
}

CMPIStatus invokeMethod(CMPIMethodMI*, const CMPIContext*, const CMPIResult* result, const CMPIObjectPath*,
                        const char* method, const CMPIArgs* in, CMPIArgs* out)
{
    CMPIValue value{};
    if (strcasecmp(method, "Blink") == 0) {
        CMPIStatus status = ok;
        const CMPIData times = in->ft->getArg(in, "Times", &status);
        value.uint32 = status.rc == CMPI_RC_OK ? times.value.uint32 * 2 : 1;
        out->ft->addArg(out, "Said", reinterpret_cast<const CMPIValue*>("blink & wink"), CMPI_chars);
    } else {
        value.uint32 = 1;
    }
    return result->ft->returnData(result, &value, CMPI_uint32);
}

const CMPIInstanceMIFT instanceTable{
    CMPIVersion200,     1,           "test",       cleanup,      enumerateInstanceNames,
    enumerateInstances, getInstance, notSupported, notSupported, notSupported,
    notSupported,       nullptr};
const CMPIAssociationMIFT associationTable{CMPIVersion200,  1,          "test",         cleanup, associators,
                                           associatorNames, references, referenceNames, nullptr, nullptr};
const CMPIMethodMIFT methodTable{CMPIVersion200, 1, "test", cleanup, invokeMethod};
CMPIInstanceMI instanceMI{nullptr, &instanceTable};
CMPIAssociationMI associationMI{nullptr, &associationTable};
CMPIMethodMI methodMI{nullptr, &methodTable};

} // namespace

extern "C" {

__attribute__((visibility("default"))) CMPIInstanceMI*
_Generic_Create_InstanceMI(const CMPIBroker* given, const CMPIContext*, const char*, CMPIStatus*)
{
    broker = given;
    return &instanceMI;
}

__attribute__((visibility("default"))) CMPIAssociationMI*
_Generic_Create_AssociationMI(const CMPIBroker* given, const CMPIContext*, const char*, CMPIStatus*)
{
    broker = given;
    return &associationMI;
}

__attribute__((visibility("default"))) CMPIMethodMI*
_Generic_Create_MethodMI(const CMPIBroker* given, const CMPIContext*, const char*, CMPIStatus*)
{
    broker = given;
    return &methodMI;
}
}
