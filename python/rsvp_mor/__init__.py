"""Configure and read an RSVP-TE signalling daemon.

    import rsvp_mor

    with rsvp_mor.Session() as s:
        for psb in s.path_states():
            print(psb.session.tunnelEndpoint, psb.sender.lspId)
"""
from rsvp_mor import raw, records, settings
from rsvp_mor.commands import disable, enable, is_enabled, reset_auth, set_debug
from rsvp_mor.dictionary import Dictionary, DictionaryError
from rsvp_mor.errors import Error, ExchangeFailed, NoSession, NotEnabled, Refused, WalkBroken
from rsvp_mor.record import Named, Record
from rsvp_mor.session import Counters, Session
from rsvp_mor.value import Secret

__all__ = [
    "Counters",
    "Dictionary",
    "DictionaryError",
    "Error",
    "ExchangeFailed",
    "Named",
    "NoSession",
    "NotEnabled",
    "Record",
    "Refused",
    "Secret",
    "Session",
    "WalkBroken",
    "disable",
    "enable",
    "is_enabled",
    "raw",
    "records",
    "reset_auth",
    "set_debug",
    "settings",
]
