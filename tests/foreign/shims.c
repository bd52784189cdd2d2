/* What net-snmp's agent needs so that it runs and ends under Wine. */

#include <signal.h>

/* In Wine 8, SnmpSvcInitUptime of snmpapi.dll is a stub that ends the program. This takes the
   place of the import. The agent needs no more than a function that returns. */
static void nothing(void) {}
void (*__imp_SnmpSvcInitUptime)(void) = nothing;

/* On Windows, a handler of SIGINT runs in a thread of its own. That of the agent closes the
   socket that the agent's main thread reads, and while managers ask, every fourth end is a
   crash, also without any extension DLL. This handler only tells the main thread to end. The
   linker puts __wrap_signal in the place of signal. */
extern int netsnmp_running;
static void stop(int number) {
  (void)number;
  netsnmp_running = 0;
}

__p_sig_fn_t __real_signal(int number, __p_sig_fn_t handler);
__p_sig_fn_t __wrap_signal(int number, __p_sig_fn_t handler) {
  return __real_signal(number, number == SIGINT ? stop : handler);
}
