"""The generated message registry says what the event database says, event by event. Usage: REGISTRY.xml DATABASE.json"""
import json
import sys
import xml.etree.ElementTree as ElementTree

NAMESPACE = "{http://schemas.dmtf.org/wbem/messageregistry/1}"
messages = ElementTree.parse(sys.argv[1]).getroot().findall(f".//{NAMESPACE}MESSAGE")
with open(sys.argv[2], encoding="utf-8") as source:
    events = json.load(source)["events"]
assert events and len(messages) == len(events), (len(messages), len(events))
for message, event in zip(messages, events):
    identity = message.find(f"{NAMESPACE}MESSAGE_ID")
    values = message.find(f"{NAMESPACE}FIXED_MESSAGE_INSTANCE_VALUES")
    said = (identity.get("PREFIX") + identity.get("SEQUENCE_NUMBER"),
            message.find(f"{NAMESPACE}MESSAGE_DESCRIPTION").text,
            message.find(f".//{NAMESPACE}STATIC_ELEMENT").text,
            values.find(f"{NAMESPACE}PERCEIVED_SEVERITY").get("VALUE"),
            values.find(f"{NAMESPACE}TYPE").get("VALUE"),
            values.find(f".//{NAMESPACE}RECOMMENDED_ACTION/{NAMESPACE}DESCRIPTION").text)
    meant = (event["messageId"], event["description"], event["summary"] + ": ", str(event["perceivedSeverity"]),
             str(event["alertType"]), event["recommendedActions"])
    assert said == meant, (said, meant)
