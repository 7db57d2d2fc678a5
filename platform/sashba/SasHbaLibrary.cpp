// The two functions of the library. Nothing is thrown out of them: a failure is one line in the log, and the tree is
// what it was.
#include "logger/Logger.h"
#include "records/SasDataLibrary.h"
#include "sashba/Session.h"
#include "sashba/source/ChooseSource.h"

#include <exception>

namespace {

constexpr char logSource[] = "KDVSasHbaMRA";

void storeHead(KDV::SasDataRoot* root, const KDV::Session& session) { root->hbas.set(session.head()); }

// Logging may fail for lack of memory too; then there is nothing left to say it with.
template <class Work>
void guarded(const char* name, Work work) noexcept
{
    try {
        const Logger log(logSource);
        try {
            work(log);
        } catch (const std::exception& error) {
            log.error("%s: %s", name, error.what());
        } catch (...) {
            log.error("%s: unknown failure", name);
        }
    } catch (...) {
    }
}

} // namespace

extern "C" {

__attribute__((visibility("default"))) void CreateSasLists(KDV::SasDataRoot* root)
{
    if (!root) return;
    root->hbas.set(nullptr);
    guarded("CreateSasLists", [root](const Logger& log) {
        KDV::Session& session = KDV::Session::createFor(root);
        session.begin(KDV::chooseSource(log));
        storeHead(root, session);
    });
}

__attribute__((visibility("default"))) void UpdateSasData(KDV::SasDataRoot* root)
{
    if (!root) return;
    guarded("UpdateSasData", [root](const Logger&) {
        KDV::Session* session = KDV::Session::of(root);
        // Another head than ours: a new root where an old one lay, without lists yet.
        if (!session || root->hbas.get() != session->head()) return;
        session->refresh();
        storeHead(root, *session);
    });
}
}
