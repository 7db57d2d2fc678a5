// SPDX-License-Identifier: GPL-2.0
/*
 * What the machine is made of. Makers, names and numbers are invented.
 *
 *   adapter phys 0-3 -- near expander --+-- bays of box a (first port of its drives)
 *                                       +-- cascaded expander -- bays of box b
 *   adapter phys 4-5 -- far expander ------ bays of box a (second port)
 *   adapter phys 6, 7 -- a drive each
 *
 * Box a is known to the kernel's enclosure driver. Box b leaves out the bit
 * by which that driver knows an enclosure, as some real ones do.
 */
#include <linux/string.h>
#include "bench.h"

#define BOX_A_ID 0x5db00000000a0000LL
#define BOX_B_ID 0x5db00000000b0000LL
#define MIB_IN_SECTORS 2048ULL

DEFINE_SPINLOCK(bench_lock);
DEFINE_MUTEX(control_mutex);

enum raid_state volume_state = RAID_STATE_ACTIVE;
int volume_resync;

struct box boxes[] = {
	{ .name = "a", .id = BOX_A_ID, .product = "SHELF8", .revision = "0107",
	  .serial = "SHELF-A-0001", .bays = 8, .first_slot = 1, .enc_serv = true },
	{ .name = "b", .id = BOX_B_ID, .product = "SHELF4", .revision = "0203",
	  .serial = "SHELF-B-0002", .bays = 4, .first_slot = 0 },
};
const int box_count = ARRAY_SIZE(boxes);

#define IN_A(number, bay_index) \
	.name = "a" #number, .box = &boxes[0], .bay = (bay_index), .bay_identifier = (bay_index), \
	.enclosure_identifier = BOX_A_ID, .routes = { { AT_NEAR, (bay_index) } }, .route_count = 1
#define IN_A_TWICE(number, bay_index) \
	.name = "a" #number, .box = &boxes[0], .bay = (bay_index), .bay_identifier = (bay_index), \
	.enclosure_identifier = BOX_A_ID, \
	.routes = { { AT_NEAR, (bay_index) }, { AT_FAR, (bay_index) } }, .route_count = 2
/* The bays of box b are wired the other way round: only the box knows which bay is which. */
#define IN_B(number) \
	.name = "b" #number, .box = &boxes[1], .bay = (number), .bay_identifier = -EINVAL, \
	.enclosure_identifier = -ENXIO, .routes = { { AT_CASCADE, 3 - (number) } }, .route_count = 1
#define ON_ADAPTER(number) \
	.name = "d" #number, .routes = { { AT_HBA, (number) } }, .route_count = 1

struct unit units[] = {
	{ IN_A_TWICE(1, 0), .disk = { "ACMEDISK", "AD1200-10K", "TT31", "ADA000000001", NULL,
		0x5db1000000000110ULL, 2344225968ULL, 512, 0, 10500, false, 20123 } },
	{ IN_A(2, 1), .disk = { "ACMEDISK", "AD4000-7K2", "N5Z1", "ADB000000002", NULL,
		0x5db1000000000120ULL, 7814037168ULL, 512, 3, 7200, false, 801 } },
	{ IN_A(3, 2), .disk = { "FLASHCO", "FC960 ENT", "GXA0", "FCC000000003", NULL,
		0x5db1000000000130ULL, 1875385008ULL, 512, 3, 1, false, 9001, 7 } },
	{ IN_A(4, 3), .disk = { "ATA", "AD2000-SATA", "SN02", "ADD000000004", "SN02.117",
		0x5db1000000000140ULL, 3907029168ULL, 512, 3, 7200, true, 31415 } },
	{ IN_A(5, 4), .disk = { "ACMEDISK", "AD8000-4KN", "N5Z1", "ADE000000005", NULL,
		0x5db1000000000150ULL, 1953506646ULL, 4096, 0, 7200, false, 44 } },
	{ IN_A(6, 5), .disk = { "ACMEDISK", "AD0600-15K", "0803", "ADF000000006", NULL,
		0x5db1000000000160ULL, 1172123568ULL, 512, 0, 15000, false, 5 } },
	{ IN_A(7, 6), .absent_at_first = true, .disk = { "ACMEDISK", "AD0600-15K", "0803", "ADG000000007", NULL,
		0x5db1000000000170ULL, 1172123568ULL, 512, 0, 15000, false, 6 } },
	{ IN_B(0), .disk = { "ACMEDISK", "AD0300-10K", "1.0", "ADH000000008", NULL,
		0x5db1000000000180ULL, 585937500ULL, 512, 0, 10000, false, 7 } },
	{ IN_B(1), .disk = { "FLASHCO", "FC400 WRITE", "GXB1", "FCI000000009", NULL,
		0x5db1000000000190ULL, 781422768ULL, 512, 0, 1, false, 12, 100 } },
	{ IN_B(2), .absent_at_first = true, .disk = { "ACMEDISK", "AD0300-10K", "1.0", "ADJ000000010", NULL,
		0x5db10000000001a0ULL, 585937500ULL, 512, 0, 10000, false, 8 } },
	/* On an adapter's own phy it is the adapter that is called the enclosure. */
	{ ON_ADAPTER(6), .bay_identifier = 6, .enclosure_identifier = HBA_ADDRESS,
	  .disk = { "ACMEDISK", "AD1200-10K", "TT31", "ADK000000011", NULL,
		0x5db10000000001b0ULL, 2344225968ULL, 512, 0, 10520, false, 1 } },
	{ ON_ADAPTER(7), .bay_identifier = -EINVAL, .enclosure_identifier = -ENXIO,
	  .disk = { "ATA", "FC240 SATA SSD", "0001", "FCL000000012", "SBFM0001",
		0x5db10000000001c0ULL, 468862128ULL, 512, 0, 1, true, 77 } },
	{ .name = "sa", .kind = PROCESSOR, .box = &boxes[0], .side = 0, .bay_identifier = -ENXIO,
	  .enclosure_identifier = BOX_A_ID, .routes = { { AT_NEAR, 14 } }, .route_count = 1 },
	{ .name = "sa2", .kind = PROCESSOR, .box = &boxes[0], .side = 1, .bay_identifier = -ENXIO,
	  .enclosure_identifier = BOX_A_ID, .routes = { { AT_FAR, 14 } }, .route_count = 1 },
	{ .name = "sb", .kind = PROCESSOR, .box = &boxes[1], .side = 0, .bay_identifier = -EINVAL,
	  .enclosure_identifier = -ENXIO, .routes = { { AT_CASCADE, 14 } }, .route_count = 1 },
	{ .name = "volume", .kind = VOLUME, .bay_identifier = -ENXIO, .enclosure_identifier = -ENXIO,
	  .disk = { "ACMERAID", "Logical Volume", "3000", "VOL000000001", NULL,
		0x6db1000000000001ULL, 400000ULL * MIB_IN_SECTORS, 512, 0, 0, false } },
};
const int unit_count = ARRAY_SIZE(units);

void set_up_machine(void)
{
	int i;

	for (i = 0; i < box_count; i++) {
		struct box *box = &boxes[i];

		memset(box->slots, ELEMENT_ABSENT, sizeof(box->slots));
		memset(box->fans, ELEMENT_OK, sizeof(box->fans));
		memset(box->supplies, ELEMENT_OK, sizeof(box->supplies));
		box->sensor = ELEMENT_OK;
	}
	for (i = 0; i < unit_count; i++)
		INIT_LIST_HEAD(&units[i].held);
}

struct unit *find_unit(const char *name)
{
	int i;

	for (i = 0; i < unit_count; i++)
		if (!strcmp(units[i].name, name))
			return &units[i];
	return NULL;
}

struct box *find_box(const char *name)
{
	int i;

	for (i = 0; i < box_count; i++)
		if (!strcmp(boxes[i].name, name))
			return &boxes[i];
	return NULL;
}

/* A drive's ports follow its own name; a processor's address is its expander's next but one. */
u64 route_address(const struct unit *unit, int route)
{
	if (unit->kind == PROCESSOR)
		return unit->box->id + 0x100 * unit->side + 0x3e;
	return unit->disk.wwn + 1 + route;
}

bool is_plugged(const struct unit *unit)
{
	int i;

	for (i = 0; i < unit->route_count; i++)
		if (unit->routes[i].port)
			return true;
	return unit->kind == VOLUME;
}
