"""What can happen to a server, the alert that it must raise, and who suffers what."""

from typing import Callable, NamedTuple, Optional

from server import Server


class Fault(NamedTuple):
    """`alert` is the one that fires then, and no other; None: nothing may fire."""

    text: str
    alert: Optional[str]
    breaks: Callable[[Server], None]
    mends: Callable[[Server], None]


def count(text, alert, group, name, number):
    """A fault that is a number of things in error, mended when it is 0 again."""
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

# Server by server, from the first again when there are more; within a server one fault after
# the other. A dead link makes the counts old: its alert takes the place of theirs.
SCRIPT = [[NOTHING], [STREAMS], [AGENT], [LINK], [SILENCE], [NETWORK], [SOURCE], [STREAMS, LINK]]


def faults_of(number):
    """What happens to server `number`, counted from 1."""
    return SCRIPT[(number - 1) % len(SCRIPT)]

