// SPDX-License-Identifier: GPL-2.0
/*
 * The pages of the boxes, as SES-3 lays them out: configuration (01h), status
 * (02h), element descriptors (07h) and additional element status (0Ah).
 * Elements in their order: bays, two power supplies, two fans, one sensor.
 */
#include <linux/kernel.h>
#include <linux/string.h>
#include <scsi/scsi_proto.h>
#include <asm/unaligned.h>
#include "bench.h"

#define GENERATION 7

struct element_type {
	u8 type;
	u8 count;
};

enum { BAYS, SUPPLIES, FANS, SENSORS, TYPES };

static void types_of(const struct box *box, struct element_type *types)
{
	types[BAYS] = (struct element_type){ 0x17, box->bays };
	types[SUPPLIES] = (struct element_type){ 0x02, ARRAY_SIZE(box->supplies) };
	types[FANS] = (struct element_type){ 0x03, ARRAY_SIZE(box->fans) };
	types[SENSORS] = (struct element_type){ 0x04, 1 };
}

static u8 code_of(const struct box *box, int type, int element)
{
	switch (type) {
	case BAYS:
		return box->slots[element];
	case SUPPLIES:
		return box->supplies[element];
	case FANS:
		return box->fans[element];
	default:
		return box->sensor;
	}
}

static int configuration_page(const struct box *box, u8 *page)
{
	struct element_type types[TYPES];
	u8 *at = page + 8;
	int i;

	types_of(box, types);
	at[0] = 0x11; /* process 1 of 1 */
	at[2] = TYPES;
	at[3] = 36;
	put_unaligned_be64(box->id, at + 4);
	memset(at + 12, ' ', 28);
	memcpy(at + 12, "ACMEBOX", 7);
	memcpy(at + 20, box->product, strlen(box->product));
	memcpy(at + 36, box->revision, 4);
	at += 40;
	for (i = 0; i < TYPES; i++, at += 4) {
		at[0] = types[i].type;
		at[1] = types[i].count;
	}
	return at - page;
}

static int status_page(const struct box *box, u8 *page)
{
	struct element_type types[TYPES];
	u8 *at = page + 8;
	int type, i;

	types_of(box, types);
	for (type = 0; type < TYPES; type++) {
		at += 4; /* the overall element says nothing */
		for (i = 0; i < types[type].count; i++, at += 4) {
			at[0] = code_of(box, type, i);
			if (at[0] == ELEMENT_CRITICAL)
				page[1] |= 0x02;
			else if (at[0] == ELEMENT_UNRECOVERABLE)
				page[1] |= 0x01;
			else if (at[0] == ELEMENT_NONCRITICAL)
				page[1] |= 0x04;
			if (type == BAYS && box->predicted[i])
				at[0] |= 0x40;
			if (type == FANS)
				at[2] = 0x20; /* hundreds of turns */
			if (type == SENSORS)
				at[2] = 31 + 20;
		}
	}
	return at - page;
}

/* Names with blanks and signs, as real boxes have them. */
static int descriptor_page(const struct box *box, u8 *page)
{
	struct element_type types[TYPES];
	u8 *at = page + 8;
	int type, i;

	types_of(box, types);
	for (type = 0; type < TYPES; type++) {
		at += 4;
		for (i = 0; i < types[type].count; i++) {
			int length = 0;

			if (type == BAYS)
				length = sprintf(at + 4, "Drive Bay #%d, %s", box->first_slot + i, box->name);
			else if (type == FANS)
				length = sprintf(at + 4, "Fan %d", i + 1);
			put_unaligned_be16(length, at + 2);
			at += 4 + length;
		}
	}
	return at - page;
}

static const struct unit *disk_in(const struct box *box, int bay)
{
	int i;

	for (i = 0; i < unit_count; i++)
		if (units[i].kind == DISK && units[i].box == box && units[i].bay == bay)
			return &units[i];
	return NULL;
}

static int additional_page(const struct unit *processor, u8 *page)
{
	const struct box *box = processor->box;
	u8 *at = page + 8;
	int bay;

	for (bay = 0; bay < box->bays; bay++, at += 36) {
		const struct unit *disk = disk_in(box, bay);

		at[0] = 0x16; /* SAS, and the element's index is given */
		at[1] = 34;
		at[3] = bay;
		at[4] = 1; /* phy */
		at[7] = box->first_slot + bay;
		if (box->slots[bay] == ELEMENT_ABSENT || !disk || processor->side >= disk->route_count)
			continue;
		at[8] = 0x10; /* an end device */
		at[11] = disk->disk.sata ? 0x01 : 0x08;
		put_unaligned_be64(box->id, at + 12);
		put_unaligned_be64(route_address(disk, processor->side), at + 20);
	}
	return at - page;
}

static int diagnostic_page(const struct unit *unit, u8 code, u8 *page)
{
	static const u8 supported[] = { 0x00, 0x01, 0x02, 0x07, 0x0a };
	int bytes;

	page[0] = code;
	put_unaligned_be32(GENERATION, page + 4);
	switch (code) {
	case 0x00:
		memcpy(page + 4, supported, sizeof(supported));
		bytes = 4 + sizeof(supported);
		break;
	case 0x01:
		bytes = configuration_page(unit->box, page);
		break;
	case 0x02:
		bytes = status_page(unit->box, page);
		break;
	case 0x07:
		bytes = descriptor_page(unit->box, page);
		break;
	case 0x0a:
		bytes = additional_page(unit, page);
		break;
	default:
		return REFUSED(ILLEGAL_REQUEST, 0x24, 0);
	}
	put_unaligned_be16(bytes - 4, page + 2);
	return bytes;
}

int answer_processor(struct unit *unit, const u8 *cdb, u8 *data)
{
	switch (cdb[0]) {
	case TEST_UNIT_READY:
	case SEND_DIAGNOSTIC: /* lights are switched on, and nobody sees it */
		return 0;
	case RECEIVE_DIAGNOSTIC:
		return diagnostic_page(unit, cdb[2], data);
	default:
		return REFUSED(ILLEGAL_REQUEST, 0x20, 0);
	}
}
