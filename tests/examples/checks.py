"""What the checks here share: a line PASS or FAIL for each of them."""
import traceback


def run(topic, checks):
    """checks: pairs of a name and a function. Returns the exit status."""
    status = 0
    for name, check in checks:
        try:
            check()
            print(f"PASS {topic}: {name}", flush=True)
        except Exception:  # a check that stops, however, must not stop the others
            print(traceback.format_exc() + f"FAIL {topic}: {name}", flush=True)
            status = 1
    return status
