// SPDX-License-Identifier: GPL-2.0
/*
 * Orders, one a write, to <debugfs>/kdvbench/control:
 *
 *   unplug UNIT[/WAY]             a drive is pulled, or one of its ways (1 or 2) is cut
 *   plug UNIT [serial=S]          and comes back; with a serial number it is another drive
 *   hang|sleep|predict|attention UNIT on|off
 *   ready UNIT on|off
 *   slot BOX BAY CODE             bays, fans and supplies count from 0; CODE is
 *   fan|supply BOX N CODE         ok, critical, noncritical, unrecoverable, absent or unknown
 *   slotpredict BOX BAY on|off
 *   temperature BOX CODE
 *   encserv BOX on|off            the bit by which the kernel knows an enclosure; it looks when the box is plugged in
 *   volume unknown|active|degraded|resyncing|offline
 *   forget                        sets the counts of commands to 0
 *
 * <debugfs>/kdvbench/units lists each unit and the commands that came to it.
 */
#include <linux/debugfs.h>
#include <linux/kernel.h>
#include <linux/seq_file.h>
#include <linux/string.h>
#include <linux/uaccess.h>
#include "bench.h"

#define MOST_WORDS 4

static struct dentry *folder;

static int word_index(const char *const *words, int count, const char *word)
{
	int i = match_string(words, count, word);

	return i < 0 ? -EINVAL : i;
}

static int element_code(const char *word)
{
	static const char *const words[] = { "", "ok", "critical", "noncritical", "unrecoverable", "absent",
					     "unknown" };

	return word_index(words, ARRAY_SIZE(words), word);
}

static int order_volume(const char *state)
{
	static const char *const states[] = { "unknown", "active", "degraded", "resyncing", "offline" };
	int found = word_index(states, ARRAY_SIZE(states), state);

	if (found < 0)
		return found;
	volume_resync = found == RAID_STATE_RESYNCING ? RAID_MAX_RESYNC / 4 : 0;
	volume_state = found;
	return 0;
}

static int order_box(const char *verb, const char *name, const char *number, const char *word)
{
	struct box *box = find_box(name);
	unsigned int element = 0;
	int code = element_code(word), most;
	u8 *codes;
	bool on;

	if (!box || kstrtouint(number, 10, &element))
		return -EINVAL;
	if (!strcmp(verb, "slotpredict")) {
		if (element >= box->bays || kstrtobool(word, &on))
			return -EINVAL;
		box->predicted[element] = on;
		return 0;
	}
	if (!strcmp(verb, "slot")) {
		codes = box->slots;
		most = box->bays;
	} else if (!strcmp(verb, "fan")) {
		codes = box->fans;
		most = ARRAY_SIZE(box->fans);
	} else if (!strcmp(verb, "supply")) {
		codes = box->supplies;
		most = ARRAY_SIZE(box->supplies);
	} else if (!strcmp(verb, "temperature")) {
		codes = &box->sensor;
		most = 1;
	} else {
		return -EINVAL;
	}
	if (code < 0 || element >= most)
		return -EINVAL;
	codes[element] = code;
	return 0;
}

static int order_encserv(const char *name, const char *word)
{
	struct box *box = find_box(name);
	bool on;

	if (!box || kstrtobool(word, &on))
		return -EINVAL;
	box->enc_serv = on;
	return 0;
}

static int order_unit(const char *verb, const char *name, const char *word)
{
	struct unit *unit = find_unit(name);
	unsigned long flags;
	bool on;

	if (!unit || kstrtobool(word, &on))
		return -EINVAL;
	spin_lock_irqsave(&bench_lock, flags);
	if (!strcmp(verb, "hang"))
		unit->hung = on;
	else if (!strcmp(verb, "sleep"))
		unit->asleep = on;
	else if (!strcmp(verb, "ready"))
		unit->not_ready = !on;
	else if (!strcmp(verb, "predict"))
		unit->predicts = on;
	else if (!strcmp(verb, "attention"))
		unit->attention = on;
	else
		unit = NULL;
	spin_unlock_irqrestore(&bench_lock, flags);
	return unit ? 0 : -EINVAL;
}

/* Another drive of the same kind: it has another name and no past. */
static void exchange(struct unit *unit, const char *serial)
{
	unsigned long flags;

	spin_lock_irqsave(&bench_lock, flags);
	strscpy(unit->disk.serial, serial, sizeof(unit->disk.serial));
	unit->disk.wwn += 0x10000;
	unit->disk.hours = 0;
	unit->hung = unit->not_ready = unit->asleep = unit->predicts = false;
	spin_unlock_irqrestore(&bench_lock, flags);
}

static int order_plug(bool in, char *name, const char *option)
{
	char *slash = strchr(name, '/');
	struct unit *unit;
	int route = -1;

	if (slash) {
		*slash = 0;
		if (in || kstrtoint(slash + 1, 10, &route) || route < 1)
			return -EINVAL;
		route--;
	}
	unit = find_unit(name);
	if (!unit || unit->kind == VOLUME || route >= unit->route_count)
		return -EINVAL;
	if (!in) {
		unplug(unit, route);
		return 0;
	}
	if (option && strncmp(option, "serial=", 7))
		return -EINVAL;
	if (option && is_plugged(unit))
		return -EBUSY;
	if (option)
		exchange(unit, option + 7);
	return plug(unit);
}

static int order_forget(void)
{
	int i;

	for (i = 0; i < unit_count; i++)
		units[i].ready_tests = units[i].log_pages = units[i].other_commands = 0;
	return 0;
}

static int order(char **words, int count)
{
	if (count == 1 && !strcmp(words[0], "forget"))
		return order_forget();
	if (count >= 2 && count <= 3 && !strcmp(words[0], "plug"))
		return order_plug(true, words[1], count == 3 ? words[2] : NULL);
	if (count == 2 && !strcmp(words[0], "unplug"))
		return order_plug(false, words[1], NULL);
	if (count == 2 && !strcmp(words[0], "volume"))
		return order_volume(words[1]);
	if (count == 3 && !strcmp(words[0], "temperature"))
		return order_box(words[0], words[1], "0", words[2]);
	if (count == 3 && !strcmp(words[0], "encserv"))
		return order_encserv(words[1], words[2]);
	if (count == 3)
		return order_unit(words[0], words[1], words[2]);
	if (count == 4)
		return order_box(words[0], words[1], words[2], words[3]);
	return -EINVAL;
}

static ssize_t control_write(struct file *file, const char __user *from, size_t bytes, loff_t *at)
{
	char line[128], *rest = line, *word, *words[MOST_WORDS];
	int count = 0, error;

	if (bytes >= sizeof(line))
		return -EINVAL;
	if (copy_from_user(line, from, bytes))
		return -EFAULT;
	line[bytes] = 0;
	while ((word = strsep(&rest, " \n"))) {
		if (!*word)
			continue;
		if (count == MOST_WORDS)
			return -EINVAL;
		words[count++] = word;
	}
	mutex_lock(&control_mutex);
	error = order(words, count);
	mutex_unlock(&control_mutex);
	return error ? error : bytes;
}

static const struct file_operations control_operations = {
	.owner = THIS_MODULE,
	.write = control_write,
};

static int units_show(struct seq_file *file, void *unused)
{
	int i;

	for (i = 0; i < unit_count; i++) {
		const struct unit *unit = &units[i];

		seq_printf(file, "%s %s serial=%s ready_tests=%u log_pages=%u other=%u\n", unit->name,
			   is_plugged(unit) ? "present" : "absent",
			   unit->kind == PROCESSOR ? unit->box->serial : unit->disk.serial, unit->ready_tests,
			   unit->log_pages, unit->other_commands);
	}
	return 0;
}
DEFINE_SHOW_ATTRIBUTE(units);

int open_control(void)
{
	folder = debugfs_create_dir("kdvbench", NULL);
	if (IS_ERR(folder))
		return PTR_ERR(folder);
	debugfs_create_file("control", 0200, folder, NULL, &control_operations);
	debugfs_create_file("units", 0400, folder, NULL, &units_fops);
	return 0;
}

void close_control(void)
{
	debugfs_remove_recursive(folder);
}
