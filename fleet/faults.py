"""The faults of servers, the alert that each must raise, and which server gets which faults."""

from typing import Callable, NamedTuple, Optional

from server import Server


class Fault(NamedTuple):
    """`alert` is the only alert that may fire. None: no alert may fire."""

    text: str
    alert: Optional[str]
    breaks: Callable[[Server], None]
    mends: Callable[[Server], None]


def count(text, alert, group, name, number):
    """A fault that sets a count above 0. Setting the count to 0 mends it."""
    return Fault(text, alert, lambda server: server.set(group, **{name: number}),
                 lambda server: server.set(group, **{name: 0}))


NOTHING = Fault("nothing", None, lambda server: None, lambda server: None)
STREAMS = count("3 streams fail", "CorvaneStreamsFailed", "Streams", "StreamsErrors", 3)
SOURCE = count("an audio source fails", "CorvaneAudioSourcesFailed",
               "AudioSources", "AudioSourcesErrors", 1)
SILENCE = count("2 audio sources fall silent", "CorvaneAudioSilence",
                "AudioSources", "AudioSourcesSilence", 2)
LINK = Fault("the Corvane server ends, the link dies", "CorvaneLinkDown",
             Server.stop_corvane, Server.start_corvane)
AGENT = Fault("the agent is not loaded", "CorvaneAgentNotLoaded",
              Server.lose_agent, Server.load_agent)
NETWORK = Fault("the network is cut", "CorvaneSnmpUnreachable",
                Server.cut_network, Server.mend_network)

# One list for each server. After the last list, the first one is used again. The faults in a
# list happen one after the other. If the link is down, the counts are old: the alert about the
# link replaces the alerts about the counts.
SCRIPT = [[NOTHING], [STREAMS], [AGENT], [LINK], [SILENCE], [NETWORK], [SOURCE], [STREAMS, LINK]]


def faults_of(number):
    """Returns the faults of server `number`; the first is 1."""
    return SCRIPT[(number - 1) % len(SCRIPT)]

