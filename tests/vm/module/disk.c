// SPDX-License-Identifier: GPL-2.0
/* What drives, processors and the volume answer. Media hold zeros and forget what is written. */
#include <linux/kernel.h>
#include <linux/string.h>
#include <scsi/scsi_proto.h>
#include <asm/unaligned.h>
#include "bench.h"

#define INVALID_FIELD REFUSED(ILLEGAL_REQUEST, 0x24, 0)
#define INVALID_OPCODE REFUSED(ILLEGAL_REQUEST, 0x20, 0)

static void put_text(u8 *at, int width, const char *text)
{
	memset(at, ' ', width);
	memcpy(at, text, min_t(int, width, strlen(text)));
}

/* ATA puts the first of two letters into the high byte of a word. */
static void put_ata_text(u8 *identify, int word, int words, const char *text)
{
	int i, length = strlen(text);

	for (i = 0; i < words * 2; i++)
		identify[word * 2 + (i ^ 1)] = i < length ? text[i] : ' ';
}

static int ata_page(const struct disk *disk, u8 *page)
{
	u8 *identify = page + 60;

	put_text(page + 8, 8, "ACMESAT");
	put_text(page + 16, 16, "TRANSLATION");
	put_text(page + 32, 4, "1.1");
	page[36] = 0x34; /* the signature comes from a disk */
	page[56] = 0xec; /* IDENTIFY DEVICE */
	put_ata_text(identify, 10, 10, disk->serial);
	put_ata_text(identify, 23, 4, disk->firmware);
	put_ata_text(identify, 27, 20, disk->product);
	put_unaligned_le16(disk->rotation, identify + 217 * 2);
	return 60 + 512;
}

static int name_page(const struct unit *unit, int route, u8 *page)
{
	u8 *at = page + 4;

	at[0] = 0x01; /* binary */
	at[1] = 0x03; /* NAA, of the unit itself */
	at[3] = 8;
	put_unaligned_be64(unit->kind == PROCESSOR ? route_address(unit, 0) : unit->disk.wwn, at + 4);
	if (unit->kind == VOLUME)
		return 16;
	at += 12;
	at[0] = 0x61; /* SAS, binary */
	at[1] = 0x93; /* NAA, of the port */
	at[3] = 8;
	put_unaligned_be64(route_address(unit, route), at + 4);
	return 28;
}

static int vpd_page(const struct unit *unit, int route, u8 code, u8 *page)
{
	const struct disk *disk = &unit->disk;
	const char *serial = unit->kind == PROCESSOR ? unit->box->serial : disk->serial;
	int bytes = 4;

	page[1] = code;
	switch (code) {
	case 0x00:
		page[bytes++] = 0x00;
		page[bytes++] = 0x80;
		page[bytes++] = 0x83;
		if (unit->kind == DISK && disk->sata)
			page[bytes++] = 0x89;
		if (unit->kind == DISK)
			page[bytes++] = 0xb1;
		break;
	case 0x80:
		bytes += sprintf(page + 4, "%s", serial);
		break;
	case 0x83:
		bytes = name_page(unit, route, page);
		break;
	case 0x89:
		if (unit->kind != DISK || !disk->sata)
			return INVALID_FIELD;
		bytes = ata_page(disk, page);
		break;
	case 0xb1:
		if (unit->kind != DISK)
			return INVALID_FIELD;
		put_unaligned_be16(disk->rotation, page + 4);
		page[7] = 0x02; /* 3.5 inch */
		bytes = 64;
		break;
	default:
		return INVALID_FIELD;
	}
	put_unaligned_be16(bytes - 4, page + 2);
	return bytes;
}

int answer_inquiry(struct unit *unit, int route, const u8 *cdb, u8 *data)
{
	const bool processor = unit->kind == PROCESSOR;

	data[0] = processor ? 0x0d : 0x00;
	if (cdb[1] & 1)
		return vpd_page(unit, route, cdb[2], data);
	data[2] = 6; /* SPC-4 */
	data[3] = 2;
	data[4] = 91;
	data[6] = processor && unit->box->enc_serv ? 0x40 : 0;
	data[7] = 0x02; /* takes more than one command */
	put_text(data + 8, 8, processor ? "ACMEBOX" : unit->disk.vendor);
	put_text(data + 16, 16, processor ? unit->box->product : unit->disk.product);
	put_text(data + 32, 4, processor ? unit->box->revision : unit->disk.revision);
	return 96;
}

static int capacity(const struct disk *disk, bool wide, u8 *data)
{
	if (!wide) {
		put_unaligned_be32(min_t(u64, disk->blocks - 1, U32_MAX), data);
		put_unaligned_be32(disk->block_bytes, data + 4);
		return 8;
	}
	put_unaligned_be64(disk->blocks - 1, data);
	put_unaligned_be32(disk->block_bytes, data + 8);
	data[13] = disk->physical_exponent;
	return 32;
}

static int mode_page(const u8 *cdb, u8 *data)
{
	const bool six = cdb[0] == MODE_SENSE;
	const int header = six ? 4 : 8;
	const u8 code = cdb[2] & 0x3f;

	if (code != 0x08 && code != 0x3f)
		return INVALID_FIELD;
	data[header] = 0x08; /* caching */
	data[header + 1] = 18;
	if (six)
		data[0] = header + 20 - 1;
	else
		put_unaligned_be16(header + 20 - 2, data);
	return header + 20;
}

static int log_page(const struct unit *unit, u8 code, u8 *page)
{
	const struct disk *disk = &unit->disk;
	int bytes = 4;

	page[0] = code;
	switch (code) {
	case 0x00:
		page[bytes++] = 0x00;
		if (disk->rotation == 1)
			page[bytes++] = 0x11;
		if (!disk->sata)
			page[bytes++] = 0x15;
		page[bytes++] = 0x2f;
		break;
	case 0x11:
		if (disk->rotation != 1)
			return INVALID_FIELD;
		page[5] = 0x01; /* the one parameter */
		page[6] = 0x03;
		page[7] = 4;
		page[11] = disk->endurance_used;
		bytes = 12;
		break;
	case 0x15:
		if (disk->sata)
			return INVALID_FIELD;
		page[6] = 0x03;
		page[7] = 12;
		put_unaligned_be32(disk->hours * 60, page + 8);
		bytes = 20;
		break;
	case 0x2f:
		page[6] = 0x03;
		page[7] = 4;
		page[8] = unit->predicts ? 0x5d : 0;
		page[9] = unit->predicts ? 0x32 : 0;
		page[10] = 35; /* degrees */
		bytes = 12;
		break;
	default:
		return INVALID_FIELD;
	}
	put_unaligned_be16(bytes - 4, page + 2);
	return bytes;
}

/* Nothing but the medium's absence, sleep or trouble stands against a command that needs it. */
static int medium_trouble(const struct unit *unit)
{
	if (unit->not_ready)
		return REFUSED(NOT_READY, 0x04, 0x03);
	if (unit->asleep)
		return REFUSED(NOT_READY, 0x04, 0x02);
	return 0;
}

int answer_disk(struct unit *unit, const u8 *cdb, u8 *data)
{
	switch (cdb[0]) {
	case TEST_UNIT_READY:
	case READ_6:
	case READ_10:
	case READ_16:
	case WRITE_6:
	case WRITE_10:
	case WRITE_16:
		return medium_trouble(unit);
	case START_STOP:
		unit->asleep = false;
		return 0;
	case SYNCHRONIZE_CACHE:
	case ALLOW_MEDIUM_REMOVAL:
		return 0;
	case READ_CAPACITY:
		return medium_trouble(unit) ?: capacity(&unit->disk, false, data);
	case SERVICE_ACTION_IN_16:
		if ((cdb[1] & 0x1f) != SAI_READ_CAPACITY_16)
			return INVALID_FIELD;
		return medium_trouble(unit) ?: capacity(&unit->disk, true, data);
	case MODE_SENSE:
	case MODE_SENSE_10:
		return mode_page(cdb, data);
	case LOG_SENSE:
		if (unit->kind == VOLUME)
			return INVALID_OPCODE;
		return log_page(unit, cdb[2] & 0x3f, data);
	default:
		return INVALID_OPCODE;
	}
}
