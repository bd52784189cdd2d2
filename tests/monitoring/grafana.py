"""Prints the dashboard as a program in TypeScript: each part is a constant whose type Grafana publishes.

    grafana.py DASHBOARD

The compiler then reports names that the type does not have, wrong values and missing parts.
The types of the whole dashboard know neither the options of a panel nor the queries of a data
source, so these parts have types of their own.
"""

import json
import sys

HEAD = """\
import type { Dashboard } from "@grafana/grafana-foundation-sdk/dashboard";
import type { dataquery } from "@grafana/grafana-foundation-sdk/prometheus";
import type * as stat from "@grafana/grafana-foundation-sdk/stat";
import type * as table from "@grafana/grafana-foundation-sdk/table";
import type * as timeseries from "@grafana/grafana-foundation-sdk/timeseries";
type Query = Omit<dataquery, "_implementsDataqueryVariant">;
// The published types have enumerations. JSON has their texts.
type Json<T> = unknown extends T ? T : T extends string ? `${T}`
  : T extends (infer U)[] ? Json<U>[] : T extends object ? { [K in keyof T]: Json<T[K]> } : T;
"""
# These two parts belong to the format of exported files.
OF_THE_EXPORT = ("__inputs", "__requires")


def constants(dashboard):
    """Returns name, type and value of each part. Takes the parts out of the dashboard."""
    for part in OF_THE_EXPORT:
        del dashboard[part]
    for panel in dashboard["panels"]:
        kind, number = panel["type"], panel["id"]
        yield f"options{number}", f"{kind}.Options", panel.pop("options")
        for query in panel.pop("targets"):
            yield f"query{number}{query['refId']}", "Query", query
        if "custom" in panel["fieldConfig"]["defaults"]:
            yield f"fields{number}", f"{kind}.FieldConfig", panel["fieldConfig"]["defaults"].pop("custom")
    yield "dashboard", "Dashboard", dashboard


def main(path):
    with open(path, encoding="utf-8") as file:
        dashboard = json.load(file)
    print(HEAD)
    for name, kind, value in constants(dashboard):
        print(f"export const {name}: Json<{kind}> = {json.dumps(value, indent=2)};")


if __name__ == "__main__":
    main(*sys.argv[1:])
