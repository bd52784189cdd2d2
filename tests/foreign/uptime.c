/* In Wine 8, SnmpSvcInitUptime of snmpapi.dll is a stub that ends the program. This takes the
   place of the import. net-snmp's agent needs no more than a function that returns. */

static void nothing(void) {}

void (*__imp_SnmpSvcInitUptime)(void) = nothing;
