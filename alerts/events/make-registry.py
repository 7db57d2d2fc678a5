#!/usr/bin/env python3
"""Makes the message registry (DSP0228 form) from the event database, so that both say the same.

Usage: make-registry.py KDV_SASIndication.json OUTPUT.xml
"""
import json
import sys
from xml.sax.saxutils import escape, quoteattr

SEVERITIES = ["Unknown", "Other", "Information", "Degraded/Warning", "Minor", "Major", "Critical", "Fatal/NonRecoverable"]
ALERT_TYPES = ["", "Other", "Communications Alert", "Quality of Service Alert", "Processing Error", "Device Alert",
               "Environmental Alert", "Model Change", "Security Alert"]


def message(event):
    prefix = event["messageId"].rstrip("0123456789")
    number = event["messageId"][len(prefix):]
    return f"""    <MESSAGE NAME={quoteattr("Event" + str(event["id"]))}>
      <MESSAGE_ID PREFIX={quoteattr(prefix)} SEQUENCE_NUMBER={quoteattr(number)}/>
      <MESSAGE_DESCRIPTION>{escape(event["description"])}</MESSAGE_DESCRIPTION>
      <MESSAGE_COMPONENTS>
        <STATIC_ELEMENT>{escape(event["summary"])}: </STATIC_ELEMENT>
        <DYNAMIC_ELEMENT NAME="Element" DATATYPE="string" SOURCE_PROPERTY="CIM_AlertIndication.AlertingManagedElement">
          <DESCRIPTION>Object path of the element that the alert is about</DESCRIPTION>
        </DYNAMIC_ELEMENT>
        <STATIC_ELEMENT> at </STATIC_ELEMENT>
        <DYNAMIC_ELEMENT NAME="Location" DATATYPE="string" SOURCE_PROPERTY="KDV_SASIndication.HWLogicalLocation">
          <DESCRIPTION>Where the hardware is; empty for logical drives</DESCRIPTION>
        </DYNAMIC_ELEMENT>
      </MESSAGE_COMPONENTS>
      <FIXED_MESSAGE_INSTANCE_VALUES>
        <TYPE VALUE="{event["alertType"]}" DESCRIPTION={quoteattr(ALERT_TYPES[event["alertType"]])}/>
        <PERCEIVED_SEVERITY VALUE="{event["perceivedSeverity"]}" DESCRIPTION={quoteattr(SEVERITIES[event["perceivedSeverity"]])}/>
        <PROBABLE_CAUSE VALUE="{event["probableCause"]}" DESCRIPTION={quoteattr(event["probableCauseDescription"])}/>
        <RECOMMENDED_ACTIONS>
          <RECOMMENDED_ACTION>
            <DESCRIPTION>{escape(event["recommendedActions"])}</DESCRIPTION>
          </RECOMMENDED_ACTION>
        </RECOMMENDED_ACTIONS>
      </FIXED_MESSAGE_INSTANCE_VALUES>
    </MESSAGE>
"""


def registry(database):
    return f"""<?xml version="1.0" encoding="UTF-8"?>
<REGISTRY xmlns="http://schemas.dmtf.org/wbem/messageregistry/1">
  <REGISTRY_DECLARATION>
    <IDENTIFICATION OWNING_ENTITY={quoteattr(database["owningEntity"])} NAME="SAS storage alerts" LANGUAGE="en"/>
    <VERSION MAJOR="1" MINOR="0" UPDATE="0"/>
  </REGISTRY_DECLARATION>
  <MESSAGES>
{"".join(message(event) for event in database["events"])}  </MESSAGES>
</REGISTRY>
"""


def main():
    if len(sys.argv) != 3:
        sys.exit(__doc__)
    with open(sys.argv[1], encoding="utf-8") as source:
        text = registry(json.load(source))
    with open(sys.argv[2], "w", encoding="utf-8") as target:
        target.write(text)


if __name__ == "__main__":
    main()
