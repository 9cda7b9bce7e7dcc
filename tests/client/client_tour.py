"""What the end-to-end tests of the client share: a server of their own and the client driven by key events."""
import contextlib, os, re, subprocess, sys


def run(*command, **options):
    return subprocess.run([str(c) for c in command], check=True, text=True, capture_output=True, **options).stdout


def expect(what, holds):
    if not holds:
        sys.exit(f"does not hold: {what}")
    print(f"holds: {what}")


@contextlib.contextmanager
def served(bin_dir, database, log, *options):
    """The address of a server over the database; it ends with the block."""
    with open(log, "w") as errors:
        server = subprocess.Popen([os.path.join(bin_dir, "kalvor-server"), "serve", "--db", database, "--port", "0",
                                   *options],
                                  stdout=subprocess.PIPE, text=True, stderr=errors)
    try:
        port = re.search(r":(\d+)\s*$", server.stdout.readline()).group(1)
        yield f"127.0.0.1:{port}"
    finally:
        server.terminate()
        server.wait()


def take_tour(bin_dir, address, pictures, documents, *options):
    os.makedirs(documents, exist_ok=True)
    environment = dict(os.environ, QT_QPA_PLATFORM="offscreen", KALVOR_DOCUMENTS=documents)
    tour = subprocess.run([os.path.join(bin_dir, "kalvor-tour"), *options, pictures, "--server", address],
                          env=environment, text=True, capture_output=True, timeout=200)
    print(tour.stderr.strip())
    expect("the tour ends well", tour.returncode == 0)
