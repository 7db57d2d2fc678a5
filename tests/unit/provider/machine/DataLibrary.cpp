// The data library's two functions over the test's own machine. Unlike the real ones they let exceptions through: a
// test uses that to make the provider's construction fail.
#include "machine/TestMachine.h"
#include "records/SasDataLibrary.h"

#define KDV_TEST_SYMBOL extern "C" __attribute__((visibility("default")))

KDV_TEST_SYMBOL KDV::Test::TestMachine* kdvTestMachine()
{
    static KDV::Test::TestMachine machine;
    return &machine;
}

KDV_TEST_SYMBOL void CreateSasLists(KDV::SasDataRoot* root) { kdvTestMachine()->createLists(*root); }

KDV_TEST_SYMBOL void UpdateSasData(KDV::SasDataRoot* root) { kdvTestMachine()->update(*root); }
