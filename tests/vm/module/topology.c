// SPDX-License-Identifier: GPL-2.0
/*
 * The adapter, its phys, ports and expanders, and what is plugged into them.
 * The driver takes the teaching device that qemu calls edu: a PCI function
 * that needs nothing, and by which the adapter has a place and a slot.
 */
#include <linux/async.h>
#include <linux/module.h>
#include <linux/pci.h>
#include <linux/slab.h>
#include <scsi/scsi_device.h>
#include <scsi/scsi_proto.h>
#include <scsi/scsi_transport.h>
#include <asm/unaligned.h>
#include "bench.h"

#define EXPANDER_PHYS 15
#define VOLUME_CHANNEL 1

static char *proc_name = "mpt3sas";
module_param(proc_name, charp, 0444);
MODULE_PARM_DESC(proc_name, "name of the driver that the host shows");

struct expander {
	u64 address;
	int level;
	enum node above;
	int first_above, width; /* phys of the node above it that lead here */
	int first_up; /* its own phys that lead there */
	const char *product, *revision;
	struct sas_rphy *rphy;
};

static struct expander expanders[NODES] = {
	[AT_NEAR] = { 0x5db00000000a0000ULL + 0x3f, 1, AT_HBA, 0, 4, 8, "SHELF8 EXPANDER", "0107" },
	[AT_FAR] = { 0x5db00000000a0100ULL + 0x3f, 1, AT_HBA, 4, 2, 8, "SHELF8 EXPANDER", "0107" },
	[AT_CASCADE] = { 0x5db00000000b0000ULL + 0x3f, 2, AT_NEAR, 12, 2, 8, "SHELF4 EXPANDER", "0203" },
};

static struct Scsi_Host *host;
static struct scsi_transport_template *sas_template;
static struct raid_template *raid_template;
static struct sas_phy *phys[NODES][EXPANDER_PHYS];

static struct unit *unit_of(const struct sas_rphy *rphy, int *route)
{
	int i, way;

	for (i = 0; i < unit_count; i++) {
		for (way = 0; way < units[i].route_count; way++) {
			if (units[i].routes[way].rphy != rphy)
				continue;
			*route = way;
			return &units[i];
		}
	}
	return NULL;
}

static struct unit *unit_behind(struct scsi_device *device, int *route)
{
	struct device *parent = scsi_target(device)->dev.parent;

	*route = 0;
	if (device->channel == VOLUME_CHANNEL)
		return device->id == 0 && device->lun == 0 ? find_unit("volume") : NULL;
	return scsi_is_sas_rphy(parent) ? unit_of(dev_to_rphy(parent), route) : NULL;
}

static int tell_enclosure(struct sas_rphy *rphy, u64 *id)
{
	int route;
	const struct unit *unit = unit_of(rphy, &route);

	if (!unit)
		return -ENXIO;
	if (unit->enclosure_identifier < 0 && unit->enclosure_identifier > -MAX_ERRNO)
		return unit->enclosure_identifier;
	*id = unit->enclosure_identifier;
	return 0;
}

static int tell_bay(struct sas_rphy *rphy)
{
	int route;
	const struct unit *unit = unit_of(rphy, &route);

	return unit ? unit->bay_identifier : -ENXIO;
}

static int tell_link_errors(struct sas_phy *phy)
{
	phy->invalid_dword_count = phy->number;
	return 0;
}

static int reset_phy(struct sas_phy *phy, int hard)
{
	return 0;
}

static struct sas_function_template sas_functions = {
	.get_linkerrors = tell_link_errors,
	.get_enclosure_identifier = tell_enclosure,
	.get_bay_identifier = tell_bay,
	.phy_reset = reset_phy,
};

static int is_volume(struct device *device)
{
	return to_scsi_device(device)->channel == VOLUME_CHANNEL;
}

static void tell_resync(struct device *device)
{
	raid_set_resync(raid_template, device, volume_resync);
}

static void tell_state(struct device *device)
{
	raid_set_state(raid_template, device, volume_state);
}

static void count_command(struct unit *unit, u8 opcode)
{
	if (opcode == TEST_UNIT_READY)
		unit->ready_tests++;
	else if (opcode == LOG_SENSE)
		unit->log_pages++;
	else if (opcode != INQUIRY && opcode != REPORT_LUNS)
		unit->other_commands++;
}

static int answer(struct unit *unit, int route, const u8 *cdb, u8 *data)
{
	if (cdb[0] == INQUIRY)
		return answer_inquiry(unit, route, cdb, data);
	if (cdb[0] == REPORT_LUNS) {
		put_unaligned_be32(8, data);
		return 16;
	}
	if (cdb[0] == REQUEST_SENSE) {
		data[0] = 0x70;
		data[7] = 10;
		return 18;
	}
	if (unit->attention) {
		unit->attention = false;
		return REFUSED(UNIT_ATTENTION, 0x29, 0x00); /* power came on */
	}
	return unit->kind == PROCESSOR ? answer_processor(unit, cdb, data) : answer_disk(unit, cdb, data);
}

static void finish(struct scsi_cmnd *command, int result, const u8 *data)
{
	const unsigned int room = scsi_bufflen(command);
	const u8 opcode = command->cmnd[0];

	if (result < 0) {
		scsi_build_sense(command, 0, -result >> 16, -result >> 8 & 0xff, -result & 0xff);
	} else if (opcode == READ_6 || opcode == READ_10 || opcode == READ_16) {
		sg_zero_buffer(scsi_sglist(command), scsi_sg_count(command), room, 0);
	} else if (command->sc_data_direction == DMA_FROM_DEVICE) {
		unsigned int bytes = min_t(unsigned int, result, room);

		scsi_sg_copy_from_buffer(command, data, bytes);
		scsi_set_resid(command, room - bytes);
	}
	scsi_done(command);
}

static int take_command(struct Scsi_Host *shost, struct scsi_cmnd *command)
{
	struct held_command *held = scsi_cmd_priv(command);
	unsigned long flags;
	struct unit *unit;
	int route, result = 0;
	u8 *data = kzalloc(PAGE_BYTES, GFP_ATOMIC);

	if (!data)
		return SCSI_MLQUEUE_HOST_BUSY;
	INIT_LIST_HEAD(&held->entry);
	held->command = command;
	command->result = 0;
	spin_lock_irqsave(&bench_lock, flags);
	unit = unit_behind(command->device, &route);
	if (unit) {
		count_command(unit, command->cmnd[0]);
		if (unit->hung)
			list_add_tail(&held->entry, &unit->held);
		else
			result = answer(unit, route, command->cmnd, data);
	}
	if (unit && unit->hung)
		command = NULL; /* it waits until it is aborted or the unit goes */
	spin_unlock_irqrestore(&bench_lock, flags);
	if (command && unit) {
		finish(command, result, data);
	} else if (command) {
		set_host_byte(command, DID_NO_CONNECT);
		scsi_done(command);
	}
	kfree(data);
	return 0;
}

static int abort_command(struct scsi_cmnd *command)
{
	struct held_command *held = scsi_cmd_priv(command);
	unsigned long flags;

	spin_lock_irqsave(&bench_lock, flags);
	list_del_init(&held->entry);
	spin_unlock_irqrestore(&bench_lock, flags);
	return SUCCESS;
}

void release_held(struct unit *unit, int host_byte)
{
	struct held_command *held, *next;
	unsigned long flags;
	LIST_HEAD(released);

	spin_lock_irqsave(&bench_lock, flags);
	unit->hung = false;
	list_splice_init(&unit->held, &released);
	list_for_each_entry_safe(held, next, &released, entry) {
		list_del_init(&held->entry);
		set_host_byte(held->command, host_byte);
		scsi_done(held->command);
	}
	spin_unlock_irqrestore(&bench_lock, flags);
}

static int allocate_device(struct scsi_device *device)
{
	int route;

	return device->lun == 0 && unit_behind(device, &route) ? 0 : -ENXIO;
}

static int configure_device(struct scsi_device *device)
{
	if (device->channel == VOLUME_CHANNEL)
		raid_set_level(raid_template, &device->sdev_gendev, RAID_LEVEL_5);
	return 0;
}

#define HOST_TEXT(name, text) \
	static ssize_t name##_show(struct device *device, struct device_attribute *attribute, char *buffer) \
	{ \
		return sysfs_emit(buffer, text "\n"); \
	} \
	static DEVICE_ATTR_RO(name)

HOST_TEXT(board_name, "ACME SAS3508-8i");
HOST_TEXT(board_assembly, "03-50008-01A");
HOST_TEXT(board_tracer, "ACMEHBA00042");
HOST_TEXT(version_fw, "16.00.12.00");
HOST_TEXT(version_bios, "18.00.03.00");
HOST_TEXT(version_product, "SAS3508");
HOST_TEXT(host_sas_address, "0x5db0000000001000");

static struct attribute *host_attrs[] = {
	&dev_attr_board_name.attr,
	&dev_attr_board_assembly.attr,
	&dev_attr_board_tracer.attr,
	&dev_attr_version_fw.attr,
	&dev_attr_version_bios.attr,
	&dev_attr_version_product.attr,
	&dev_attr_host_sas_address.attr,
	NULL,
};
ATTRIBUTE_GROUPS(host);

static struct scsi_host_template host_template = {
	.module = THIS_MODULE,
	.name = "kdvbench",
	.queuecommand = take_command,
	.eh_abort_handler = abort_command,
	.slave_alloc = allocate_device,
	.slave_configure = configure_device,
	.can_queue = 64,
	.cmd_per_lun = 8,
	.cmd_size = sizeof(struct held_command),
	.this_id = -1,
	.sg_tablesize = 64,
	.max_sectors = 128,
	.shost_groups = host_groups,
};

static struct raid_function_template raid_functions = {
	.cookie = &host_template,
	.is_raid = is_volume,
	.get_resync = tell_resync,
	.get_state = tell_state,
};

static struct device *device_at(enum node node)
{
	return node == AT_HBA ? &host->shost_gendev : &expanders[node].rphy->dev;
}

static void link_phy(struct sas_phy *phy, enum sas_device_type attached)
{
	phy->identify.device_type = attached;
	phy->negotiated_linkrate = attached == SAS_PHY_UNUSED ? SAS_LINK_RATE_UNKNOWN : SAS_LINK_RATE_12_0_GBPS;
}

static int add_phys(enum node node)
{
	const int count = node == AT_HBA ? HBA_PHYS : EXPANDER_PHYS;
	int i, error;

	for (i = 0; i < count; i++) {
		struct sas_phy *phy = sas_phy_alloc(device_at(node), i);

		if (!phy)
			return -ENOMEM;
		phy->identify.sas_address = node == AT_HBA ? HBA_ADDRESS : expanders[node].address;
		phy->identify.phy_identifier = i;
		phy->identify.initiator_port_protocols = node == AT_HBA ? SAS_PROTOCOL_ALL : SAS_PROTOCOL_SMP;
		phy->identify.target_port_protocols = node == AT_HBA ? SAS_PROTOCOL_NONE : SAS_PROTOCOL_SMP;
		phy->minimum_linkrate_hw = phy->minimum_linkrate = SAS_LINK_RATE_3_0_GBPS;
		phy->maximum_linkrate_hw = phy->maximum_linkrate = SAS_LINK_RATE_12_0_GBPS;
		phy->enabled = 1;
		link_phy(phy, SAS_PHY_UNUSED);
		error = sas_phy_add(phy);
		if (error) {
			sas_phy_free(phy);
			return error;
		}
		phys[node][i] = phy;
	}
	return 0;
}

static struct sas_port *add_port(enum node node, int first, int width, enum sas_device_type attached)
{
	struct sas_port *port = sas_port_alloc_num(device_at(node));
	int i;

	if (!port)
		return NULL;
	if (sas_port_add(port)) {
		sas_port_free(port);
		return NULL;
	}
	for (i = first; i < first + width; i++) {
		sas_port_add_phy(port, phys[node][i]);
		link_phy(phys[node][i], attached);
	}
	return port;
}

static int add_expander(enum node node)
{
	struct expander *expander = &expanders[node];
	struct sas_port *port = add_port(expander->above, expander->first_above, expander->width,
					 SAS_EDGE_EXPANDER_DEVICE);
	struct sas_expander_device *shown;
	int error;

	if (!port)
		return -ENOMEM;
	expander->rphy = sas_expander_alloc(port, SAS_EDGE_EXPANDER_DEVICE);
	if (!expander->rphy)
		return -ENOMEM;
	expander->rphy->identify.device_type = SAS_EDGE_EXPANDER_DEVICE;
	expander->rphy->identify.sas_address = expander->address;
	expander->rphy->identify.target_port_protocols = SAS_PROTOCOL_SMP;
	shown = rphy_to_expander_device(expander->rphy);
	shown->level = expander->level;
	strscpy(shown->vendor_id, "ACMEBOX", sizeof(shown->vendor_id));
	strscpy(shown->product_id, expander->product, sizeof(shown->product_id));
	strscpy(shown->product_rev, expander->revision, sizeof(shown->product_rev));
	error = sas_rphy_add(expander->rphy);
	if (!error)
		error = add_phys(node);
	if (error)
		return error;
	port = add_port(node, expander->first_up, expander->width, SAS_EDGE_EXPANDER_DEVICE);
	if (!port)
		return -ENOMEM;
	sas_port_mark_backlink(port);
	return 0;
}

static void show_bay(const struct unit *unit, enum element_code code)
{
	if (unit->kind == DISK && unit->box)
		unit->box->slots[unit->bay] = code;
}

static int plug_route(struct unit *unit, int way)
{
	struct route *route = &unit->routes[way];
	struct sas_rphy *rphy;
	int error;

	route->port = add_port(route->at, route->phy, 1, SAS_END_DEVICE);
	if (!route->port)
		return -ENOMEM;
	rphy = sas_end_device_alloc(route->port);
	if (!rphy)
		return -ENOMEM;
	rphy->identify.device_type = SAS_END_DEVICE;
	rphy->identify.sas_address = route_address(unit, way);
	rphy->identify.phy_identifier = route->phy;
	rphy->identify.target_port_protocols = unit->disk.sata ? SAS_PROTOCOL_SATA : SAS_PROTOCOL_SSP;
	route->rphy = rphy; /* before the kernel asks who is there */
	error = sas_rphy_add(rphy);
	async_synchronize_full(); /* disks get their names in the order in which they are plugged in */
	return error;
}

int plug(struct unit *unit)
{
	int way, error = 0;

	show_bay(unit, ELEMENT_OK);
	for (way = 0; way < unit->route_count && !error; way++)
		if (!unit->routes[way].port)
			error = plug_route(unit, way);
	return error;
}

void unplug(struct unit *unit, int only)
{
	unsigned long flags;
	int way;

	for (way = 0; way < unit->route_count; way++) {
		struct route *route = &unit->routes[way];
		struct sas_port *port = route->port;

		if (!port || (only >= 0 && way != only))
			continue;
		spin_lock_irqsave(&bench_lock, flags);
		route->rphy = NULL; /* what still comes finds nobody */
		route->port = NULL;
		spin_unlock_irqrestore(&bench_lock, flags);
		release_held(unit, DID_NO_CONNECT);
		if (!is_plugged(unit))
			show_bay(unit, ELEMENT_ABSENT);
		sas_port_delete(port);
		link_phy(phys[route->at][route->phy], SAS_PHY_UNUSED);
	}
}

static int populate(void)
{
	int node, i, error = add_phys(AT_HBA);

	for (node = AT_NEAR; node < NODES && !error; node++)
		error = add_expander(node);
	for (i = 0; i < unit_count && !error; i++)
		if (!units[i].absent_at_first && units[i].kind != VOLUME)
			error = plug(&units[i]);
	if (!error)
		error = scsi_add_device(host, VOLUME_CHANNEL, 0, 0);
	return error;
}

static void dismantle(void)
{
	struct scsi_device *volume = scsi_device_lookup(host, VOLUME_CHANNEL, 0, 0);
	int i;

	for (i = 0; i < unit_count; i++)
		unplug(&units[i], -1);
	if (volume) {
		scsi_remove_device(volume);
		scsi_device_put(volume);
	}
	sas_remove_host(host);
	scsi_remove_host(host);
	scsi_host_put(host);
	host = NULL;
}

static int bench_probe(struct pci_dev *function, const struct pci_device_id *id)
{
	int error = pcim_enable_device(function);

	if (error)
		return error;
	if (host)
		return -EBUSY;
	host_template.proc_name = proc_name;
	host = scsi_host_alloc(&host_template, 0);
	if (!host)
		return -ENOMEM;
	host->transportt = sas_template;
	host->max_channel = VOLUME_CHANNEL;
	host->max_id = 256;
	host->max_lun = 8;
	host->max_cmd_len = 16;
	error = scsi_add_host(host, &function->dev);
	if (error) {
		scsi_host_put(host);
		host = NULL;
		return error;
	}
	mutex_lock(&control_mutex);
	error = populate();
	if (error)
		dismantle();
	mutex_unlock(&control_mutex);
	return error;
}

static void bench_remove(struct pci_dev *function)
{
	mutex_lock(&control_mutex);
	dismantle();
	mutex_unlock(&control_mutex);
}

static const struct pci_device_id functions[] = { { PCI_DEVICE(0x1234, 0x11e8) }, {} };
MODULE_DEVICE_TABLE(pci, functions);

static struct pci_driver bench_driver = {
	.name = "kdvbench",
	.id_table = functions,
	.probe = bench_probe,
	.remove = bench_remove,
};

static int __init bench_init(void)
{
	int error = -ENOMEM;

	set_up_machine();
	sas_template = sas_attach_transport(&sas_functions);
	raid_template = raid_class_attach(&raid_functions);
	if (sas_template && raid_template)
		error = pci_register_driver(&bench_driver);
	if (!error) {
		error = open_control();
		if (error)
			pci_unregister_driver(&bench_driver);
	}
	if (error && raid_template)
		raid_class_release(raid_template);
	if (error && sas_template)
		sas_release_transport(sas_template);
	return error;
}

static void __exit bench_exit(void)
{
	close_control();
	pci_unregister_driver(&bench_driver);
	raid_class_release(raid_template);
	sas_release_transport(sas_template);
}

module_init(bench_init);
module_exit(bench_exit);
MODULE_LICENSE("GPL");
MODULE_DESCRIPTION("SAS machine in memory, for tests only");
