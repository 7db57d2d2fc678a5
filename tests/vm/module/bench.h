/* SPDX-License-Identifier: GPL-2.0 */
/*
 * A SAS machine that exists in memory only, for tests of what reads /sys and
 * asks devices: one adapter, three expanders, two boxes, drives and a volume.
 * It is registered with the kernel's own transport, so that everything above
 * the adapter's driver is what a real machine has.
 *
 * machine.c says what there is, topology.c hangs it into the kernel, disk.c
 * and enclosure.c answer commands, control.c takes orders while it runs.
 *
 * bench_lock guards every state that commands read; they run in atomic
 * context. control_mutex is held around everything that adds or removes.
 */
#pragma once

#include <linux/mutex.h>
#include <linux/raid_class.h>
#include <linux/spinlock.h>
#include <linux/types.h>
#include <scsi/scsi_cmnd.h>
#include <scsi/scsi_host.h>
#include <scsi/scsi_transport_sas.h>

#define HBA_ADDRESS 0x5db0000000001000ULL
#define HBA_PHYS 8
#define PAGE_BYTES 2048 /* the longest answer */
#define MOST_ROUTES 2
#define MOST_BAYS 8

enum node { AT_HBA, AT_NEAR, AT_FAR, AT_CASCADE, NODES };

enum unit_kind { DISK, PROCESSOR, VOLUME };

/* Codes of an element, as enclosures write them. */
enum element_code {
	ELEMENT_OK = 1,
	ELEMENT_CRITICAL = 2,
	ELEMENT_NONCRITICAL = 3,
	ELEMENT_UNRECOVERABLE = 4,
	ELEMENT_ABSENT = 5,
	ELEMENT_UNKNOWN = 6,
};

struct disk {
	const char *vendor, *product, *revision;
	char serial[21];
	const char *firmware; /* the whole name, of a SATA disk */
	u64 wwn;
	u64 blocks;
	u32 block_bytes;
	u8 physical_exponent; /* of two, blocks in a physical block */
	u16 rotation; /* 1: does not turn */
	bool sata;
	u32 hours;
	u8 endurance_used;
};

/* One way from the adapter to a unit. */
struct route {
	enum node at;
	int phy;
	struct sas_port *port; /* NULL while nothing is plugged */
	struct sas_rphy *rphy;
};

struct box {
	const char *name; /* in orders */
	u64 id;
	const char *product, *revision, *serial;
	u8 bays;
	u8 first_slot; /* the number printed at the first bay */
	bool enc_serv; /* the bit in INQUIRY that the kernel's driver wants */
	u8 slots[MOST_BAYS], fans[2], supplies[2], sensor;
	bool predicted[MOST_BAYS];
};

struct unit {
	const char *name; /* in orders */
	enum unit_kind kind;
	struct box *box; /* of the disk or of the processor */
	u8 bay; /* in the box, from 0 */
	u8 side; /* of a processor: the route of the disks that it sees */
	int bay_identifier; /* that the adapter tells, or a negative error */
	s64 enclosure_identifier; /* likewise */
	struct disk disk;
	struct route routes[MOST_ROUTES];
	int route_count;
	bool absent_at_first;
	bool hung, not_ready, asleep, predicts, attention;
	u32 ready_tests, log_pages, other_commands; /* that came since the last look */
	struct list_head held; /* commands that are not answered */
};

/* What the midlayer keeps for us in each command. */
struct held_command {
	struct list_head entry;
	struct scsi_cmnd *command;
};

extern spinlock_t bench_lock;
extern struct mutex control_mutex;
extern struct box boxes[];
extern const int box_count;
extern struct unit units[];
extern const int unit_count;
extern enum raid_state volume_state;
extern int volume_resync;

/* machine.c */
void set_up_machine(void);
struct unit *find_unit(const char *name);
struct box *find_box(const char *name);
u64 route_address(const struct unit *unit, int route);
bool is_plugged(const struct unit *unit);

/* topology.c: control_mutex held */
int plug(struct unit *unit);
void unplug(struct unit *unit, int route); /* -1: every route */
void release_held(struct unit *unit, int host_byte);

/* disk.c and enclosure.c: bench_lock held; they fill the answer, or return a negative sense */
#define REFUSED(key, asc, ascq) (-((key) << 16 | (asc) << 8 | (ascq)))
int answer_disk(struct unit *unit, const u8 *cdb, u8 *data);
int answer_processor(struct unit *unit, const u8 *cdb, u8 *data);
int answer_inquiry(struct unit *unit, int route, const u8 *cdb, u8 *data);

/* control.c */
int open_control(void);
void close_control(void);
