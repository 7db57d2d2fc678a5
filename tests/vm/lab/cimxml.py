"""The few CIM-XML requests (DSP0200, DSP0201) that a subscriber sends; everything else is asked with kdv-sas."""
import http.client
import xml.etree.ElementTree as ElementTree
from xml.sax.saxutils import escape


class Refused(AssertionError):
    pass


def call(port, name_space, method, parameters):
    """The answer's IRETURNVALUE."""
    names = "".join(f'<NAMESPACE NAME="{part}"/>' for part in name_space.split("/"))
    body = ('<?xml version="1.0" encoding="utf-8"?>\n<CIM CIMVERSION="2.0" DTDVERSION="2.0"><MESSAGE ID="1" '
            f'PROTOCOLVERSION="1.0"><SIMPLEREQ><IMETHODCALL NAME="{method}"><LOCALNAMESPACEPATH>{names}'
            f'</LOCALNAMESPACEPATH>{parameters}</IMETHODCALL></SIMPLEREQ></MESSAGE></CIM>')
    connection = http.client.HTTPConnection("127.0.0.1", port, timeout=120)
    try:
        connection.request("POST", "/cimom", body.encode(), {
            "Content-Type": "application/xml; charset=utf-8", "CIMOperation": "MethodCall", "CIMMethod": method,
            "CIMObject": name_space.replace("/", "%2F")})
        answer = ElementTree.fromstring(connection.getresponse().read())
    finally:
        connection.close()
    error = answer.find(".//ERROR")
    if error is not None:
        raise Refused(f"{method}: {error.get('CODE')} {error.get('DESCRIPTION')}")
    return answer.find(".//IRETURNVALUE")


def _reference(name, instance_name):
    return (f'<PROPERTY.REFERENCE NAME="{name}"><VALUE.REFERENCE>'
            f'{ElementTree.tostring(instance_name, encoding="unicode")}</VALUE.REFERENCE></PROPERTY.REFERENCE>')


def _create(port, class_name, properties):
    made = call(port, "interop", "CreateInstance",
                f'<IPARAMVALUE NAME="NewInstance"><INSTANCE CLASSNAME="{class_name}">{properties}</INSTANCE>'
                "</IPARAMVALUE>")
    return made.find("INSTANCENAME")


def _text(name, value):
    return f'<PROPERTY NAME="{name}" TYPE="string"><VALUE>{escape(value)}</VALUE></PROPERTY>'


def subscribe(port, url):
    """To all alerts, with the filter that the server has for that."""
    filters = call(port, "interop", "EnumerateInstanceNames",
                   '<IPARAMVALUE NAME="ClassName"><CLASSNAME NAME="CIM_IndicationFilter"/></IPARAMVALUE>')
    every_alert = next(name for name in filters.iter("INSTANCENAME")
                       if any(value.text == "VNR:KDV_SAS:AllAlerts" for value in name.iter("KEYVALUE")))
    destination = _create(port, "CIM_ListenerDestinationCIMXML", _text("Name", "lab") + _text("Destination", url))
    _create(port, "CIM_IndicationSubscription", _reference("Filter", every_alert) + _reference("Handler", destination))
