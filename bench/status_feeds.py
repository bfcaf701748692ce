"""Status feeds of some 100 KB in each of the four formats, the same bytes every time."""

import json

SIZE = 100_000


def _padded(feed, key, make):
    """Adds entries to the list `key` until the feed is large enough."""
    entries = feed.setdefault(key, [])
    while len(json.dumps(feed)) < SIZE:
        entries.extend(make(len(entries) + n) for n in range(20))
    return json.dumps(feed).encode()


def _component(n):
    return {"id": f"component-{n}", "name": f"Component {n}", "status": "operational", "position": n,
            "created_at": "2026-01-31T09:05:00.123Z", "description": "Serves “requests” of region \u00fc\n",
            "showcase": n % 2 == 0, "group_id": None, "uptime": 99.97}


def statuspage():
    return _padded({"page": {"id": "p", "name": "Example", "updated_at": "2026-01-31T09:05:00Z"},
                    "status": {"indicator": "minor", "description": "Partially Degraded Service"}},
                   "components", _component)


def betterstack():
    return _padded({"data": {"id": "1", "type": "status_page",
                             "attributes": {"company_name": "Example", "aggregate_state": "operational",
                                            "updated_at": "2026-01-31T09:05:00Z"}}}, "included", _component)


def instatus():
    return _padded({"page": {"name": "Example", "url": "https://status.example.com", "status": "HASISSUES"}},
                   "activeIncidents", lambda n: {"name": f"Incident {n}", "started": "2026-01-31T09:05:00Z",
                                                 "status": "INVESTIGATING", "impact": "PARTIALOUTAGE",
                                                 "url": f"https://status.example.com/{n}"})


def slack():
    return _padded({"status": "active", "date_created": "2026-01-31T09:05:00-08:00",
                    "date_updated": "2026-01-31T09:05:00-08:00"},
                   "active_incidents", lambda n: {"id": str(n) if n % 2 else n, "title": f"Trouble {n}",
                                                  "type": "incident", "status": "active",
                                                  "services": ["Messaging", "Calls"],
                                                  "notes": [{"body": "We are looking.", "date_created": "x"}]})


FEEDS = {"statuspage": ("statuspage-v2", statuspage), "betterstack": ("betterstack-index", betterstack),
         "instatus": ("instatus-summary", instatus), "slack": ("slack-status-v2", slack)}
