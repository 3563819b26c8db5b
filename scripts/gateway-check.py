#!/usr/bin/python3
"""gateway-check.py LIBKEYENCE [ROOT [FOLDER...]]: says whether this libkeyence.so will load on a gateway. ROOT is a
copy of the gateway's root folder, or of its /usr/lib; without it this machine is looked at. A FOLDER, as its path is
on the gateway, is one that the host loads libraries from besides the system's folders. Needs python3-pyelftools here
and nothing on the gateway. One line a point: "ok", "FAILS" or "unknown".
Exit code: 0 no point fails, 1 a point fails, 2 wrong usage."""

import contextlib
import glob
import os
import re
import sys

# The last two: the root may be a copy of /usr/lib alone.
LIBRARY_FOLDERS = ("/lib/*-linux-*", "/usr/lib/*-linux-*", "/lib", "/usr/lib", "/lib64", "/usr/lib64", "/*-linux-*", "/")
PROGRAM_FOLDERS = ("/bin", "/sbin", "/usr/bin", "/usr/sbin", "/usr/local/bin", "/usr/local/sbin", "/opt", "/opt/*",
                   "/opt/*/bin")
HOST_LIBRARY = "libvel.so.1"


def stop(message):
    print(f"gateway-check: {message}", file=sys.stderr)
    sys.exit(2)


try:
    from elftools.common.exceptions import ELFError
    from elftools.elf.descriptions import describe_e_machine
    from elftools.elf.elffile import ELFFile
except ImportError:
    stop("the Python module elftools is missing; install the package python3-pyelftools")


class Root:
    """The gateway's files, by their paths on the gateway."""

    def __init__(self, folder):
        self.folder = folder.rstrip("/")

    def place(self, path):
        """Where it is on this machine. Links are followed within the root, as an absolute one would lead to this
        machine's own files."""
        done, rest, links = [], path.split("/")[::-1], 0
        while rest:
            part = rest.pop()
            here = "/".join([self.folder, *done, part])
            if part == "..":
                del done[-1:]
            elif part not in ("", ".") and os.path.islink(here) and links < 40:
                links += 1
                rest += os.readlink(here).split("/")[::-1]
                if os.path.isabs(os.readlink(here)):
                    done = []
            elif part not in ("", "."):
                done.append(part)
        return "/".join([self.folder, *done])

    def matching(self, pattern):
        folder, name = os.path.split(pattern)
        for parent in self.matching(folder) if "*" in folder else [folder]:
            for file in sorted(glob.glob(f"{glob.escape(self.place(parent))}/{name}")):
                yield os.path.join(parent, os.path.basename(file))

    def configured_folders(self, file, is_included=False):
        """The folders that the loader's configuration names. An included file includes no other, so that none can
        include itself."""
        if not os.path.isfile(self.place(file)):
            return
        with open(self.place(file), encoding="utf-8", errors="surrogateescape") as lines:
            lines = [line.split("#")[0].strip() for line in lines]
        yield from (line for line in lines if line.startswith("/"))
        for line in lines:
            if line.startswith("include") and not is_included:
                for included in self.matching(os.path.join("/etc", line.removeprefix("include").strip())):
                    yield from self.configured_folders(included, True)


def elf_of(file):
    """Nothing for another kind of file, or none."""
    with contextlib.suppress(ELFError, OSError):
        return ELFFile(open(file, "rb")) if os.path.isfile(file) else None


def parts(elf, section, method):
    """What the method gives of the section; nothing without it, or in a file that was cut off."""
    with contextlib.suppress(ELFError):
        found = elf.get_section_by_name(section)
        return getattr(found, method)() if found else ()
    return ()


def kind(elf):
    """Class, machine and float convention, in words."""
    machine = describe_e_machine(elf["e_machine"])
    if machine == "ARM":
        attributes = (attribute for section in parts(elf, ".ARM.attributes", "iter_subsections")
                      for of_file in section.iter_subsubsections() for attribute in of_file.iter_attributes())
        has_float_arguments = any(part.tag == "TAG_ABI_VFP_ARGS" and part.value == 1 for part in attributes)
        is_soft, is_hard = elf["e_flags"] & 0x200, elf["e_flags"] & 0x400
        machine += " with hard float" if is_hard or (has_float_arguments and not is_soft) else " with soft float"
    return f"{elf.elfclass}-bit{'' if elf.little_endian else ' big-endian'} {machine}"


def dynamic(elf, name):
    return [getattr(tag, name) for tag in parts(elf, ".dynamic", "iter_tags") if hasattr(tag, name)]


def exported(elf):
    return {symbol.name for symbol in parts(elf, ".dynsym", "iter_symbols")
            if symbol["st_shndx"] != "SHN_UNDEF" and symbol["st_info"]["bind"] != "STB_LOCAL"}


def imported(elf):
    """Without those that may be missing."""
    return {symbol.name for symbol in parts(elf, ".dynsym", "iter_symbols")
            if symbol["st_shndx"] == "SHN_UNDEF" and symbol["st_info"]["bind"] == "STB_GLOBAL"}


def plugin_identifier(elf):
    """The interface identifier in a plug-in's metadata, which is CBOR behind 16 bytes: a map whose first key is 2 and
    has the identifier as text."""
    metadata = bytes(parts(elf, ".qtmetadata", "data"))[16:]
    if metadata[:2] != b"\xbf\x02":
        return ""
    length, start = metadata[2] - 0x60, 3
    if length == 24:
        length, start = metadata[3], 4
    return metadata[start:start + length].decode()


def family_and_number(version):
    match = re.fullmatch(r"(.+?)_(\d.*)", version)
    return match.groups() if match else (version, version)


def highest(versions):
    return max((family_and_number(version)[1] for version in versions),
               key=lambda number: [int(digits) for digits in re.findall(r"\d+", number)])


class Gateway:
    """Each point gives its lines of the report, and uses what those before it have found."""

    def __init__(self, root, named, file):
        self.root, self.named = root, named
        self.folders = [*named, *root.configured_folders("/etc/ld.so.conf"),
                        *(folder for pattern in LIBRARY_FOLDERS for folder in root.matching(pattern))]
        self.plugin, self.plugin_name = elf_of(file), os.path.basename(file)
        # The libraries that the plug-in needs, and those that they need, by name; none for one that is not there.
        self.found = {}

    def find(self, name, any_kind=False):
        """The file that the loader takes for it; files of another kind it passes over."""
        files = (elf_of(self.root.place(f"{folder}/{name}")) for folder in self.folders)
        return next((elf for elf in files if elf and (any_kind or kind(elf) == kind(self.plugin))), None)

    def kind_point(self):
        other = self.find("libc.so.6", any_kind=True)
        if self.find("libc.so.6"):
            yield f"ok: the library is for {kind(self.plugin)}, and so is the gateway."
        elif other:
            yield (f"FAILS: the library is for {kind(self.plugin)}, but the gateway is {kind(other)}; take the package "
                   "for that.")
        else:
            yield (f"FAILS: there is no libc.so.6 in the library folders of {self.root.folder}/; copy the gateway's "
                   "/lib too.")

    def libraries_point(self):
        direct = dynamic(self.plugin, "needed")
        wanted = [(name, self.plugin_name) for name in direct]
        all_right = True
        for name, user in wanted:
            if name in self.found:
                continue
            elf = self.found[name] = self.find(name)
            wanted += [(needed, os.path.basename(elf.stream.name)) for needed in dynamic(elf, "needed")] if elf else []
            soname = (dynamic(elf, "soname") or [name])[0] if elf else None
            if soname == name:
                continue
            all_right = False
            yield f"FAILS: {name}, which {user} needs, " + (
                f"is another library; it calls itself {soname}." if elf else
                "is not in the library folders; install it, or name the host's folder.")
        if all_right:
            yield f"ok: all {len(direct)} needed libraries are there, with those that they need."

    def versions_point(self):
        """A line for each family of symbol versions."""
        families = {}
        for library, versions in parts(self.plugin, ".gnu.version_r", "iter_versions"):
            for version in versions:
                if self.found.get(library.name):
                    families.setdefault(family_and_number(version.name)[0], []).append((library.name, version.name))
        for family, needs in families.items():
            stated = {name: [next(names).name for _, names in parts(self.found[name], ".gnu.version_d", "iter_versions")]
                      for name, _ in needs}
            there = [version for names in stated.values() for version in names
                     if family_and_number(version)[0] == family]
            missing = [version for name, version in needs if stated[name] and version not in stated[name]]
            silent = [name for name in stated if not stated[name]]
            sentence = f"{family} symbols up to {highest(version for _, version in needs)} are needed"
            present = f"{f'up to {highest(there)}' if there else 'none'} are there"
            if missing:
                yield f"FAILS: {sentence}, {present}; missing: {' '.join(missing)}."
            elif silent:
                yield f"ok: {sentence}; {silent[-1]} states no versions, so the loader does not ask."
            else:
                yield f"ok: {sentence}, {present}."

    def host_symbols_point(self):
        """Every symbol that no other library has must be in the host's."""
        if None in self.found.values():
            yield f"unknown: the symbols of {HOST_LIBRARY} were not compared, because libraries are missing."
            return
        wanted = imported(self.plugin).difference(
            *(exported(elf) for name, elf in self.found.items() if name != HOST_LIBRARY))
        host = self.find(HOST_LIBRARY)
        lacking = wanted - exported(host) if host else wanted
        if lacking:
            yield (f"FAILS: {HOST_LIBRARY} lacks {len(lacking)} of the {len(wanted)} symbols that the library imports "
                   f"from it: {' '.join(sorted(lacking))}; build with VEL_ROOT against the host's framework.")
        else:
            yield f"ok: {HOST_LIBRARY} exports all {len(wanted)} symbols that the library imports from it."

    def host_files(self):
        """The host's library, and the programs that need it. Other drivers are no witnesses: one may be an earlier,
        wrong build of this one. Neither is velhost, which is no host."""
        folders = [*PROGRAM_FOLDERS, *self.named, *(f"{folder}/../bin" for folder in self.named)]
        programs = {self.root.place(path) for folder in folders for path in self.root.matching(f"{folder}/*")
                    if not re.search(r"\.so(\.|$)|/velhost$", path)}
        yield from (elf for elf in map(elf_of, programs) if elf and HOST_LIBRARY in dynamic(elf, "needed"))
        yield from filter(None, [self.find(HOST_LIBRARY)])

    def identifier_point(self):
        """Compares with what the host asks for, as far as that can be found."""
        identifier = plugin_identifier(self.plugin)
        if not identifier:
            yield "FAILS: the library has no interface identifier: it is no Qt plug-in."
            return
        name = identifier.rpartition("/")[0].rpartition(".")[2]
        pattern = rb"[\w.-]*" + re.escape(name.encode()) + rb"/\d[\d.]*(?=\s|\0|$)"
        asked = sorted((text.decode(), elf.stream.name.removeprefix(self.root.folder)) for elf in self.host_files()
                       for text in re.findall(pattern, bytes(parts(elf, ".rodata", "data"))))
        witnesses = [file for text, file in asked if text == identifier]
        if witnesses:
            yield f"ok: the interface identifier is {identifier}, as in {witnesses[0]}."
        elif asked:
            yield (f"FAILS: the interface identifier is {identifier}, but {asked[0][1]} has {asked[0][0]}; build with "
                   "its VEL_INTERFACE_PREFIX.")
        else:
            yield (f"unknown: the interface identifier {identifier}: what the host asks for was not found; compare it "
                   "by hand.")


def main(file="", folder="/", *named):
    if not file:
        stop("usage: gateway-check.py LIBKEYENCE [ROOT [FOLDER...]]")
    if not os.path.isfile(file):
        stop(f"there is no file {file}")
    if not elf_of(file):
        stop(f"{file} is no ELF library")
    if not os.path.isdir(folder):
        stop(f"there is no folder {folder}; give a copy of the gateway's root folder or of its /usr/lib")
    gateway = Gateway(Root(folder), named, file)
    has_failed = False
    for point in (gateway.kind_point, gateway.libraries_point, gateway.versions_point, gateway.host_symbols_point,
                  gateway.identifier_point):
        for line in point():
            print(line)
            has_failed = has_failed or line.startswith("FAILS")
        if has_failed and point == gateway.kind_point:
            print("The other points were not checked.")
            return 1
    print("The library will not work on this gateway." if has_failed
          else "Nothing that was found keeps the library from loading on this gateway.")
    return 1 if has_failed else 0


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
