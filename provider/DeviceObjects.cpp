#include "provider/DeviceObjects.h"

#include "common/AutoMutex.h"

#include <vector>

namespace KDV {

void DeviceObjects::keepForever(std::unique_ptr<DeviceObjects> devices)
{
    static pthread_mutex_t mutex = PTHREAD_MUTEX_INITIALIZER;
    static auto* const kept = std::make_unique<std::vector<std::unique_ptr<DeviceObjects>>>().release();
    AutoMutex lock(mutex);
    kept->push_back(std::move(devices));
}

} // namespace KDV
