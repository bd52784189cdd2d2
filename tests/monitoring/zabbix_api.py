"""Sends requests to a Zabbix frontend for the test `zabbix`.

    zabbix_api.py URL import FILE         imports the template, or replaces the old one
    zabbix_api.py URL host ADDRESS PORT   creates a host with the template; it is polled every five seconds
    zabbix_api.py URL values              prints key and last value of its polled items
    zabbix_api.py URL problems            prints severity and name of the current problems
"""

import json
import sys
import urllib.request

TEMPLATE = "Corvane by SNMP"
SEVERITIES = ["Not classified", "Information", "Warning", "Average", "High", "Disaster"]


class Zabbix:
    def __init__(self, url):
        self._url = url
        self._token = None
        self._token = self.call("user.login", username="Admin", password="zabbix")

    def call(self, method, **parameters):
        body = {"jsonrpc": "2.0", "id": 1, "method": method, "params": parameters, "auth": self._token}
        request = urllib.request.Request(self._url, json.dumps(body).encode(),
                                         {"Content-Type": "application/json-rpc"})
        with urllib.request.urlopen(request, timeout=120) as response:
            answer = json.load(response)
        if "error" in answer:
            raise SystemExit(f"{method}: {answer['error']['message']} {answer['error']['data']}")
        return answer["result"]

    def template(self):
        return self.call("template.get", filter={"host": TEMPLATE}, output=["templateid"])[0]["templateid"]


def import_template(zabbix, path):
    with open(path, encoding="utf-8") as file:
        source = file.read()
    everything = {"createMissing": True, "updateExisting": True}
    zabbix.call("configuration.import", format="yaml", source=source, rules={
        "groups": {"createMissing": True}, "templates": everything, "items": everything,
        "triggers": everything, "valueMaps": everything})
    return ["imported"]


def host(zabbix, address, port):
    for item in zabbix.call("item.get", templateids=zabbix.template(), output=["itemid", "type"]):
        if item["type"] == "20":  # by SNMP; those for traps have no interval
            zabbix.call("item.update", itemid=item["itemid"], delay="5s")
    group = zabbix.call("hostgroup.create", name="Corvane")["groupids"][0]
    zabbix.call("host.create", host="corvane1", groups=[{"groupid": group}],
                templates=[{"templateid": zabbix.template()}],
                macros=[{"macro": "{$CORVANE.NODATA}", "value": "30s"}],
                interfaces=[{"type": 2, "main": 1, "useip": 1, "ip": address, "dns": "", "port": port,
                             "details": {"version": 2, "bulk": 1, "community": "public"}}])
    return ["created"]


def values(zabbix):
    items = zabbix.call("item.get", host="corvane1", output=["key_", "lastvalue", "lastclock", "type"], sortfield="key_")
    return [f"{item['key_']} {item['lastvalue']}" for item in items
            if item["type"] == "20" and item["lastclock"] != "0"]


def problems(zabbix):
    found = zabbix.call("trigger.get", host="corvane1", filter={"value": 1}, skipDependent=True,
                        output=["description", "priority"], monitored=True)
    return sorted(f"{SEVERITIES[int(trigger['priority'])]} {trigger['description']}" for trigger in found)


if __name__ == "__main__":
    print("\n".join({"import": import_template, "host": host, "values": values, "problems": problems}[sys.argv[2]](
        Zabbix(sys.argv[1]), *sys.argv[3:])))
