#include "sashba/Session.h"

#include <map>
#include <mutex>
#include <utility>

namespace KDV {
namespace {

struct Sessions {
    std::mutex lock;
    std::map<const SasDataRoot*, std::unique_ptr<Session>> byRoot;
};

// Never destroyed: records outlive every static object that may still read them while the process ends.
Sessions& sessions()
{
    static Sessions* const all = new Sessions;
    return *all;
}

} // namespace

Session& Session::createFor(const SasDataRoot* root)
{
    Sessions& all = sessions();
    const std::lock_guard<std::mutex> guard(all.lock);
    std::unique_ptr<Session>& session = all.byRoot[root];
    if (!session) session = std::make_unique<Session>();
    return *session;
}

Session* Session::of(const SasDataRoot* root)
{
    Sessions& all = sessions();
    const std::lock_guard<std::mutex> guard(all.lock);
    const auto found = all.byRoot.find(root);
    return found == all.byRoot.end() ? nullptr : found->second.get();
}

void Session::begin(std::unique_ptr<Source> source)
{
    _tree.take({});
    _source = std::move(source);
    if (_source) _source->load(_tree);
}

void Session::refresh()
{
    if (_source) _source->refresh(_tree);
}

} // namespace KDV
