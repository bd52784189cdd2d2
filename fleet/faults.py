"""The faults of servers and of the monitoring, and the alert that each must raise."""

from typing import Any, Callable, NamedTuple, Optional

from monitoring import Exporter, Targets
from server import Server


class Fault(NamedTuple):
    """`alert` is the only alert that may fire. None: no alert may fire. `also` are alerts that may
    come and go before it. `breaks` and `mends` receive the server, or the part of the monitoring."""

    text: str
    alert: Optional[str]
    breaks: Callable[[Any], None]
    mends: Callable[[Any], None]
    also: frozenset = frozenset()


def do_nothing(_):
    """For a fault that needs no action."""


def count(text, alert, group, name, number):
    """A fault that sets a count above 0. Setting the count to 0 mends it."""
    return Fault(text, alert, lambda server: server.set(group, **{name: number}),
                 lambda server: server.set(group, **{name: 0}))


NOTHING = Fault("nothing", None, do_nothing, do_nothing)
STREAMS = count("3 streams fail", "CorvaneStreamsFailed", "Streams", "StreamsErrors", 3)
SOURCE = count("an audio source fails", "CorvaneAudioSourcesFailed",
               "AudioSources", "AudioSourcesErrors", 1)
SILENCE = count("2 audio sources fall silent", "CorvaneAudioSilence",
                "AudioSources", "AudioSourcesSilence", 2)
LINK = Fault("the Corvane server ends, the link dies", "CorvaneLinkDown",
             Server.stop_corvane, Server.start_corvane)
# The last of the losses mends itself.
FLAPS = Fault("the link is lost again and again", "CorvaneLinkFlaps",
              Server.flap, do_nothing, also=frozenset({"CorvaneLinkDown"}))
AGENT = Fault("the agent is not loaded", "CorvaneAgentNotLoaded",
              Server.lose_agent, Server.load_agent)
NETWORK = Fault("the network is cut", "CorvaneSnmpUnreachable",
                Server.cut_network, Server.mend_network)
TARGET = Fault("it is no target any more", "CorvaneTargetMissing",
               Server.leave_targets, Server.join_targets)
# The agent cannot know that a server hangs: no alert fires until the agent starts again.
FREEZE = Fault("the Corvane server hangs", None, Server.freeze_corvane, Server.thaw_corvane)
RESTART = Fault("it hangs, and the agent starts again", "CorvaneNoValues",
                Server.restart_agent, Server.thaw_corvane)

# One list for each server. After the last list, the first one is used again. The faults in a
# list happen one after the other. If the link is down, the counts are old: the alert about the
# link replaces the alerts about the counts.
SCRIPT = [[NOTHING], [STREAMS], [AGENT], [LINK], [SILENCE], [NETWORK], [SOURCE], [STREAMS, LINK],
          [FREEZE], [FREEZE, RESTART], [FLAPS], [TARGET]]

EXPORTER = Fault("an exporter ends", "CorvaneExporterDown", Exporter.stop, Exporter.start)
JOB = Fault("the job has no targets", "CorvaneJobMissing", Targets.hide, Targets.show)


def faults_of(number):
    """Returns the faults of server `number`; the first is 1."""
    return SCRIPT[(number - 1) % len(SCRIPT)]
