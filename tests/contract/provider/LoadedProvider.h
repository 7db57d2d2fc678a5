// The built provider library, loaded once more for each object of this class: from a copy under a name of its own, so
// that its registry is empty as in a new process. Gives the four entry points, and the machine in the data library that
// the loader found for it. Brokers live as long as the process, because a pass may still be on its way out.
#pragma once

#include "broker/Broker.h"
#include "cmpi/ProviderTables.h"
#include "cmpicpp/CmpiProvider.h"
#include "harness/Requests.h"
#include "machine/TestMachine.h"

#include <string>

namespace KDV::Test {

Host::Broker& brokerOf(Host::Profile profile);
TestMachine& loadedMachine(); // of the data library in place

// The object behind a table, whatever interface the table is of.
const CmpiCpp::CmpiProvider* providerOf(const CMPIInstanceMI* table);
const CmpiCpp::CmpiProvider* providerOf(const CMPIAssociationMI* table);
const CmpiCpp::CmpiProvider* providerOf(const CMPIMethodMI* table);
const CmpiCpp::CmpiProvider* providerOf(const CMPIIndicationMI* table);

class LoadedProvider {
public:
    explicit LoadedProvider(Host::Profile profile);
    ~LoadedProvider(); // ends the provider as an ending server does

    // Null when the entry point gives none. May be called from several threads.
    CMPIInstanceMI* createInstanceMI(const char* name = "KDVSASHBA");
    CMPIAssociationMI* createAssociationMI(const char* name = "KDVSASHBA");
    CMPIMethodMI* createMethodMI(const char* name = "KDVSASHBA");
    CMPIIndicationMI* createIndicationMI(const char* name = "KDVSASHBA");

    Requests requests();                         // makes all four tables at the first call
    Requests requestsAfresh();                   // and makes them again
    CMPIrc cleanup(bool terminating, int table); // 0 instance, 1 association, 2 method, 3 indication

private:
    template <class Table>
    Table* create(const char* symbol, const char* name);

    Host::Broker& _broker;
    void* _library;
    Tables _tables;
};

} // namespace KDV::Test
