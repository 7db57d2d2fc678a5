// The two functions of the data library, by their unmangled names. Any library that exports them under the SONAME
// libKDVSasHbaMRA.so and fills records of this layout can take the place of ours.
// Neither throws nor reports anything: what they leave in the tree is the truth. Callers hold the provider's mutex.
#pragma once

#include "records/Records.h"

extern "C" {

// Builds the record tree and stores the head of the HBA list in the zero-filled root; a null head means no HBA.
void CreateSasLists(KDV::SasDataRoot* root);

// Refreshes every record in place; physical drive records may be added to or dropped from the lists.
void UpdateSasData(KDV::SasDataRoot* root);
}
