"""Builds the package and the libraries that it needs as a wheel, for `pip install .` at the top of the tree.

What it takes is on the machine already, so that nothing is fetched. The interface is that of PEP 517, the file that of
PEP 427.
"""

import base64
import hashlib
import pathlib
import re
import subprocess
import sys
import sysconfig
import tempfile
import zipfile

ROOT = pathlib.Path(__file__).resolve().parents[2]
DEFAULT_BUILD = ROOT / "build" / "wheel"


def _run(*command: object) -> None:
    subprocess.run([str(word) for word in command], check=True)


def _version() -> str:
    found = re.search(r"project\(kaAnimation VERSION ([0-9.]+)", (ROOT / "CMakeLists.txt").read_text())
    assert found
    return found[1]


def _installed(prefix: pathlib.Path, build: pathlib.Path) -> dict[str, pathlib.Path]:
    """Builds and installs below the prefix; what goes into the wheel by its name there."""
    _run("cmake", "-S", ROOT, "-B", build, "-G", "Ninja", "-D", "CMAKE_BUILD_TYPE=Release", "-D",
         "KA_BUILD_PYTHON=ON", "-D", f"KA_PYTHON={sys.executable}", "-D", "CMAKE_INSTALL_LIBDIR=lib",
         *(word for name in ("TESTS", "BENCHMARKS", "TOOLS", "STUDIO") for word in ("-D", f"KA_BUILD_{name}=OFF")))
    _run("cmake", "--build", build, "--target", "kaPython")
    for component in ("library", "python"):
        _run("cmake", "--install", build, "--prefix", prefix, "--component", component)
    package = prefix / "lib" / "python3" / "dist-packages"
    files = {str(path.relative_to(package)): path for path in sorted(package.rglob("*")) if path.is_file()}
    for library in sorted((prefix / "lib").glob("*.so.?")):  # by the name that programs load
        files[f"kaanimation/lib/{library.name}"] = library.resolve()
    return files


def build_wheel(wheel_directory, config_settings=None, metadata_directory=None):
    """config_settings: "build" is a folder to build in, kept for the next time; default: build/wheel in the tree."""
    name = f"kaanimation-{_version()}"
    python = f"cp{sys.version_info.major}{sys.version_info.minor}"
    platform = re.sub(r"[-.]", "_", sysconfig.get_platform())
    wheel = f"{name}-{python}-{python}-{platform}.whl"
    metadata = {
        "METADATA": f"Metadata-Version: 2.1\nName: kaanimation\nVersion: {_version()}\n"
                    "Summary: Keyframe animation for interactive 3D scenes\n"
                    "Requires-Python: >=3.9\nRequires-Dist: numpy\n",
        "WHEEL": f"Wheel-Version: 1.0\nGenerator: ka_wheel\nRoot-Is-Purelib: false\n"
                 f"Tag: {python}-{python}-{platform}\n",
    }
    build = pathlib.Path((config_settings or {}).get("build", DEFAULT_BUILD))
    with tempfile.TemporaryDirectory() as folder:
        contents = {path: file.read_bytes() for path, file in _installed(pathlib.Path(folder), build).items()}
    contents |= {f"{name}.dist-info/{file}": text.encode() for file, text in metadata.items()}
    record = "".join(
        f"{path},sha256={base64.urlsafe_b64encode(hashlib.sha256(data).digest()).rstrip(b'=').decode()},{len(data)}\n"
        for path, data in contents.items())
    contents[f"{name}.dist-info/RECORD"] = f"{record}{name}.dist-info/RECORD,,\n".encode()
    with zipfile.ZipFile(pathlib.Path(wheel_directory, wheel), "w", zipfile.ZIP_DEFLATED) as archive:
        for path, data in contents.items():
            archive.writestr(path, data)
    return wheel


def build_sdist(sdist_directory, config_settings=None):
    raise NotImplementedError("the package is built from the tree as it is")
