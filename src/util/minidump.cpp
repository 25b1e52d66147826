#include "util/minidump.h"

#include <cpuid.h>
#include <dirent.h>
#include <elf.h>
#include <errno.h>
#include <fcntl.h>
#include <string.h>
#include <sys/uio.h>
#include <sys/utsname.h>
#include <time.h>
#include <unistd.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>

namespace {

// The format's records; the file is little-endian, as the machine is.
struct location {
    uint32_t size;
    uint32_t rva;
};

struct memoryrange {
    uint64_t start;
    location data;
};

struct directoryentry {
    uint32_t type;
    location data;
};

struct header {
    uint32_t signature, version, streams, directory, checksum, time;
    uint64_t flags;
};

struct threadrecord {
    uint32_t id, suspendcount, priorityclass, priority;
    uint64_t environmentblock;
    memoryrange stack;
    location context;
};

struct exceptionrecord {
    uint32_t threadid, alignment;
    uint32_t code, flags;  // on Linux: the signal and its si_code
    uint64_t nested, address;
    uint32_t parametercount, unused;
    uint64_t parameters[15];
    location context;
};

#pragma pack(push, 4)
struct modulerecord {
    uint64_t base;
    uint32_t size, checksum, time, name;
    uint32_t version[13];
    location codeview, misc;
    uint64_t reserved[2];
};
#pragma pack(pop)

struct systemrecord {
    uint16_t architecture, level, revision;
    uint8_t processors, producttype;
    uint32_t major, minor, build, platform, servicepack;
    uint16_t suite, reserved;
    uint32_t vendor[3], versioninformation, features, amdfeatures;
};

struct miscrecord {
    uint32_t size, flags, processid, createtime, usertime, kerneltime;
};

struct amd64context {
    uint64_t home[6];
    uint32_t flags, mxcsr;
    uint16_t cs, ds, es, fs, gs, ss;
    uint32_t eflags;
    uint64_t debug[6];
    uint64_t rax, rcx, rdx, rbx, rsp, rbp, rsi, rdi, r8, r9, r10, r11, r12, r13, r14, r15;
    uint64_t rip;
    uint8_t fltsave[512];  // the fxsave image, as the kernel keeps it in the signal frame
    uint8_t vector[26 * 16];
    uint64_t vectorcontrol, debugcontrol, lastbranch[4];
};

static_assert(sizeof(header) == 32 && sizeof(directoryentry) == 12 && sizeof(threadrecord) == 48);
static_assert(sizeof(exceptionrecord) == 168 && sizeof(modulerecord) == 108 && sizeof(systemrecord) == 56);
static_assert(sizeof(amd64context) == 0x4D0 && offsetof(amd64context, rip) == 0xF8);

constexpr uint32_t dumpsignature = 0x504D444D;  // "MDMP"
constexpr uint32_t dumpversion = 0xA793;
constexpr uint32_t elfbuildid = 0x4270454C;     // a CodeView record that holds an ELF build id
constexpr uint16_t amd64 = 9;
constexpr uint32_t linuxplatform = 0x8201;
constexpr uint32_t processidknown = 1;
constexpr uint32_t contextamd64 = 0x100000, contextcontrol = 1, contextinteger = 2, contextsegments = 4,
                   contextfloat = 8;

// Stream types: the Microsoft ones, then the Linux ones that common readers know.
enum : uint32_t {
    threadliststream = 3, moduleliststream = 4, memoryliststream = 5, exceptionstream = 6, systeminfostream = 7,
    miscinfostream = 15,
    linuxcpuinfo = 0x47670003, linuxprocstatus = 0x47670004, linuxlsbrelease = 0x47670005,
    linuxcmdline = 0x47670006, linuxauxv = 0x47670008, linuxmaps = 0x47670009,
};

constexpr size_t stagesize = 64 << 10;
constexpr size_t mapssize = 1 << 20;
constexpr uintptr_t redzone = 128;          // below the stack pointer, still the function's own
constexpr uintptr_t stackbytes = 64 << 10;  // of the faulting thread, up from its stack pointer
constexpr uintptr_t codebytes = 256;        // around the faulting instruction
constexpr int maxthreads = 4096, maxmodules = 1024, maxstreams = 12, maxheaders = 32;
constexpr size_t maxbuildid = 64, notebytes = 1024, maxname = 4096;

struct modulepath {
    const char* text;
    size_t length;
};

// Everything a dump needs beyond a few locals, kept with the library: nothing can be allocated
// inside a signal handler.
struct reservedspace {
    uint8_t stage[stagesize];
    char maps[mapssize];
    alignas(8) char dirents[16 << 10];
    threadrecord threads[maxthreads];
    modulerecord modules[maxmodules];
    modulepath paths[maxmodules];
    directoryentry directory[maxstreams];
    amd64context context;
    char16_t name[maxname + 1];
    uint8_t codeview[4 + maxbuildid];
    uint8_t notes[notebytes];
    Elf64_Phdr headers[maxheaders];
    char text[256];
    systemrecord system;
    char kernel[2 * sizeof(utsname::release)];
};
reservedspace space;
size_t mapslength;
int streamcount;

// Copies from the process's own memory without faulting: a mapping may end short of what its
// headers claim.
bool safecopy(void* to, uintptr_t from, size_t size) {
    iovec local{to, size}, remote{reinterpret_cast<void*>(from), size};
    return process_vm_readv(getpid(), &local, 1, &remote, 1, 0) == static_cast<ssize_t>(size);
}

size_t readwhole(const char* path, char* into, size_t capacity) {
    int in = open(path, O_RDONLY | O_CLOEXEC);
    if (in < 0) return 0;
    size_t length = 0;
    while (length < capacity) {
        ssize_t n = read(in, into + length, capacity - length);
        if (n < 0 && errno == EINTR) continue;
        if (n <= 0) break;
        length += static_cast<size_t>(n);
    }
    close(in);
    return length;
}

// The dump file, written in order through a staging buffer; the header and directory, known
// last, go back to the start.
class dumpfile {
public:
    explicit dumpfile(int fd) : fd(fd) {}

    // The position of the next record, aligned to 8.
    uint32_t start() {
        static const uint8_t zeros[8] = {};
        raw(zeros, -position & 7);
        return position;
    }

    void raw(const void* data, size_t size) {
        auto* p = static_cast<const uint8_t*>(data);
        position += static_cast<uint32_t>(size);
        while (size > 0) {
            if (staged == stagesize) flush();
            size_t n = std::min(size, stagesize - staged);
            memcpy(space.stage + staged, p, n);
            staged += n;
            p += n;
            size -= n;
        }
    }

    location since(uint32_t rva) const { return {position - rva, rva}; }

    location put(const void* data, size_t size) {
        uint32_t at = start();
        raw(data, size);
        return since(at);
    }

    // Bytes of the process straight from where they are; a page that went away reads as zeros.
    location putmemory(uintptr_t address, size_t size) {
        static const uint8_t zeros[4096] = {};
        uint32_t at = start();
        flush();
        while (size > 0 && ok) {
            ssize_t n = write(fd, reinterpret_cast<const void*>(address), size);
            if (n > 0) {
                address += static_cast<size_t>(n);
                size -= static_cast<size_t>(n);
                position += static_cast<uint32_t>(n);
            } else if (n < 0 && errno == EFAULT) {
                for (; size > 0; size -= std::min(size, sizeof zeros)) raw(zeros, std::min(size, sizeof zeros));
            } else if (n == 0 || errno != EINTR) {
                ok = false;
            }
        }
        return since(at);
    }

    // A whole file as it reads now; nothing if it can't be opened.
    location putfile(const char* path) {
        int in = open(path, O_RDONLY | O_CLOEXEC);
        if (in < 0) return {0, 0};
        uint32_t at = start();
        for (;;) {
            if (staged == stagesize) flush();
            ssize_t n = read(in, space.stage + staged, stagesize - staged);
            if (n < 0 && errno == EINTR) continue;
            if (n <= 0) break;
            staged += static_cast<size_t>(n);
            position += static_cast<uint32_t>(n);
        }
        close(in);
        return since(at);
    }

    bool finish(const header& head) {
        flush();
        return ok && pwrite(fd, &head, sizeof head, 0) == sizeof head &&
               pwrite(fd, space.directory, sizeof space.directory, sizeof head) == sizeof space.directory;
    }

private:
    void flush() {
        for (const uint8_t* p = space.stage; ok && staged > 0;) {
            ssize_t n = write(fd, p, staged);
            if (n > 0) {
                p += n;
                staged -= static_cast<size_t>(n);
            } else if (n == 0 || errno != EINTR) {
                ok = false;
            }
        }
        staged = 0;
    }

    int fd;
    uint32_t position = 0;
    size_t staged = 0;
    bool ok = true;
};

void addstream(uint32_t type, location data) {
    if (data.size > 0 && streamcount < maxstreams) space.directory[streamcount++] = {type, data};
}

template <class T>
location putlist(dumpfile& out, const T* items, uint32_t count) {
    uint32_t at = out.start();
    out.raw(&count, sizeof count);
    out.raw(items, count * sizeof(T));
    return out.since(at);
}

// A name as the format keeps it: its length in bytes, then UTF-16 with a terminator.
location putstring(dumpfile& out, const char* text, size_t length) {
    size_t n = 0;
    for (size_t i = 0; i < length && n < maxname - 1;) {
        uint32_t c = static_cast<uint8_t>(text[i++]);
        int extra = c >= 0xF0 ? 3 : c >= 0xE0 ? 2 : c >= 0xC0 ? 1 : 0;
        if (c >= 0x80 && extra == 0) c = 0xFFFD;
        c &= extra ? (0x40u >> extra) - 1 : 0xFFFFFFFFu;
        for (int k = 0; k < extra; ++k) {
            if (i == length || (text[i] & 0xC0) != 0x80) {
                c = 0xFFFD;
                break;
            }
            c = c << 6 | (text[i++] & 0x3F);
        }
        if (c >= 0x10000) {
            space.name[n++] = static_cast<char16_t>(0xD800 + ((c - 0x10000) >> 10));
            c = 0xDC00 + ((c - 0x10000) & 0x3FF);
        }
        space.name[n++] = static_cast<char16_t>(c);
    }
    space.name[n] = 0;
    uint32_t bytes = static_cast<uint32_t>(n * 2);
    uint32_t at = out.start();
    out.raw(&bytes, sizeof bytes);
    out.raw(space.name, bytes + 2);
    return out.since(at);
}

// One line of /proc/self/maps.
struct mapping {
    uintptr_t start, end, offset;
    bool readable;
    const char* path;
    size_t pathlength;
};

uintptr_t hex(const char*& p, const char* limit) {
    uintptr_t value = 0;
    for (; p < limit; ++p) {
        int digit = *p >= '0' && *p <= '9' ? *p - '0' : *p >= 'a' && *p <= 'f' ? *p - 'a' + 10 : -1;
        if (digit < 0) break;
        value = value << 4 | static_cast<uintptr_t>(digit);
    }
    return value;
}

const char* nextfield(const char* p, const char* limit) {
    while (p < limit && *p != ' ') ++p;
    while (p < limit && *p == ' ') ++p;
    return p;
}

// Reads the line at `p` and moves past it; false at the end of the text.
bool nextmapping(const char*& p, mapping& m) {
    const char* end = space.maps + mapslength;
    if (p >= end) return false;
    auto* newline = static_cast<const char*>(memchr(p, '\n', static_cast<size_t>(end - p)));
    const char* eol = newline ? newline : end;
    const char* q = p;
    m.start = hex(q, eol);
    ++q;
    m.end = hex(q, eol);
    q = nextfield(q, eol);
    m.readable = q < eol && *q == 'r';
    q = nextfield(q, eol);
    m.offset = hex(q, eol);
    q = nextfield(nextfield(nextfield(q, eol), eol), eol);  // past the device and the inode
    m.path = q;
    m.pathlength = static_cast<size_t>(eol - q);
    p = eol + 1;
    return true;
}

// The bytes from `from` to `to`, cut to the readable mapping that holds `inside`.
memoryrange region(dumpfile& out, uintptr_t inside, uintptr_t from, uintptr_t to) {
    mapping m;
    for (const char* p = space.maps; nextmapping(p, m);) {
        if (inside < m.start || inside >= m.end) continue;
        if (!m.readable) break;
        from = std::max(from, m.start);
        return {from, out.putmemory(from, std::min(to, m.end) - from)};
    }
    return {inside, {0, 0}};
}

void fromsignal(amd64context& c, const ucontext_t& uc) {
    const greg_t* g = uc.uc_mcontext.gregs;
    c = {};
    c.flags = contextamd64 | contextcontrol | contextinteger | contextsegments | contextfloat;
    auto segments = static_cast<uint64_t>(g[REG_CSGSFS]);
    c.cs = static_cast<uint16_t>(segments);
    c.gs = static_cast<uint16_t>(segments >> 16);
    c.fs = static_cast<uint16_t>(segments >> 32);
    c.ss = static_cast<uint16_t>(segments >> 48);
    c.eflags = static_cast<uint32_t>(g[REG_EFL]);
    uint64_t* integer[] = {&c.rax, &c.rcx, &c.rdx, &c.rbx, &c.rsp, &c.rbp, &c.rsi, &c.rdi,
                           &c.r8,  &c.r9,  &c.r10, &c.r11, &c.r12, &c.r13, &c.r14, &c.r15, &c.rip};
    const int from[] = {REG_RAX, REG_RCX, REG_RDX, REG_RBX, REG_RSP, REG_RBP, REG_RSI, REG_RDI, REG_R8,
                        REG_R9,  REG_R10, REG_R11, REG_R12, REG_R13, REG_R14, REG_R15, REG_RIP};
    for (int i = 0; i < 17; ++i) *integer[i] = static_cast<uint64_t>(g[from[i]]);
    if (uc.uc_mcontext.fpregs) {
        memcpy(c.fltsave, uc.uc_mcontext.fpregs, sizeof c.fltsave);
        c.mxcsr = uc.uc_mcontext.fpregs->mxcsr;
    }
}

char* decimal(char* to, uint32_t value) {
    char digits[10];
    int n = 0;
    do digits[n++] = static_cast<char>('0' + value % 10);
    while (value /= 10);
    while (n > 0) *to++ = digits[--n];
    return to;
}

// What the kernel tells of another thread that waits in the kernel: its stack and instruction
// pointers, the last two numbers of its syscall file ("running" when it is on a processor).
void waitingcontext(amd64context& c, uint32_t thread) {
    char path[64] = "/proc/self/task/";
    strcpy(decimal(path + strlen(path), thread), "/syscall");
    size_t length = readwhole(path, space.text, sizeof space.text);
    c = {};
    c.flags = contextamd64;
    if (length == 0 || space.text[0] == 'r') return;
    uint64_t last[2] = {};
    int numbers = 0;
    for (const char *p = space.text, *end = p + length; p < end; p = nextfield(p, end)) {
        if (end - p > 2 && p[0] == '0' && p[1] == 'x') p += 2;
        last[0] = last[1];
        last[1] = hex(p, end);
        ++numbers;
    }
    if (numbers < 3) return;
    c.flags |= contextcontrol;
    c.rsp = last[0];
    c.rip = last[1];
}

// Every thread of the process. The faulting one has its registers and stack; the others have
// what waitingcontext finds, and no stack memory.
location writethreads(dumpfile& out, uint32_t self, location faultcontext, memoryrange faultstack) {
    uint32_t count = 0;
    int dir = open("/proc/self/task", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    for (ssize_t n; dir >= 0 && (n = getdents64(dir, space.dirents, sizeof space.dirents)) > 0;) {
        for (ssize_t at = 0; at < n;) {
            auto* entry = reinterpret_cast<dirent64*>(space.dirents + at);
            at += entry->d_reclen;
            uint32_t id = 0;
            for (const char* c = entry->d_name; *c >= '0' && *c <= '9'; ++c) id = id * 10 + static_cast<uint32_t>(*c - '0');
            if (id == 0 || count == maxthreads) continue;
            threadrecord& t = space.threads[count++];
            t = {};
            t.id = id;
            if (id == self) {
                t.stack = faultstack;
                t.context = faultcontext;
            } else {
                waitingcontext(space.context, id);
                t.stack.start = space.context.rsp;
                t.context = out.put(&space.context, sizeof space.context);
            }
        }
    }
    if (dir >= 0) close(dir);
    return putlist(out, space.threads, count);
}

// The GNU build id of the ELF image mapped at `base`, into `id`; its length, 0 if none.
size_t buildid(uintptr_t base, uint8_t* id) {
    Elf64_Ehdr eh;
    if (!safecopy(&eh, base, sizeof eh) || eh.e_phentsize != sizeof(Elf64_Phdr)) return 0;
    int count = std::min<int>(eh.e_phnum, maxheaders);
    if (!safecopy(space.headers, base + eh.e_phoff, count * sizeof(Elf64_Phdr))) return 0;
    uintptr_t bias = base;
    for (int i = 0; i < count; ++i) {
        const Elf64_Phdr& ph = space.headers[i];
        if (ph.p_type != PT_LOAD) continue;
        bias = base - (ph.p_vaddr - ph.p_offset);
        break;
    }
    for (int i = 0; i < count; ++i) {
        const Elf64_Phdr& ph = space.headers[i];
        size_t size = std::min<size_t>(ph.p_filesz, notebytes);
        if (ph.p_type != PT_NOTE || !safecopy(space.notes, bias + ph.p_vaddr, size)) continue;
        for (size_t at = 0; at + sizeof(Elf64_Nhdr) <= size;) {
            Elf64_Nhdr note;
            memcpy(&note, space.notes + at, sizeof note);
            size_t name = at + sizeof note, desc = name + ((note.n_namesz + 3) & ~3u);
            at = desc + ((note.n_descsz + 3) & ~3u);
            if (note.n_type != NT_GNU_BUILD_ID || note.n_namesz != 4 || memcmp(space.notes + name, "GNU", 4) != 0 ||
                note.n_descsz > maxbuildid || desc + note.n_descsz > size)
                continue;
            memcpy(id, space.notes + desc, note.n_descsz);
            return note.n_descsz;
        }
    }
    return 0;
}

// Every mapped ELF object: from its mapping at file offset 0 to the end of its last mapping,
// with its name and build id.
location writemodules(dumpfile& out) {
    uint32_t count = 0;
    mapping m;
    for (const char* p = space.maps; nextmapping(p, m);) {
        if (m.pathlength == 0 || m.path[0] != '/') continue;
        modulepath& last = space.paths[count ? count - 1 : 0];
        if (count && m.offset != 0 && last.length == m.pathlength && memcmp(last.text, m.path, m.pathlength) == 0) {
            space.modules[count - 1].size = static_cast<uint32_t>(m.end - space.modules[count - 1].base);
            continue;
        }
        uint8_t magic[SELFMAG];
        if (m.offset != 0 || !m.readable || count == maxmodules || !safecopy(magic, m.start, SELFMAG) ||
            memcmp(magic, ELFMAG, SELFMAG) != 0)
            continue;
        space.modules[count] = {};
        space.modules[count].base = m.start;
        space.modules[count].size = static_cast<uint32_t>(m.end - m.start);
        space.paths[count++] = {m.path, m.pathlength};
    }
    for (uint32_t i = 0; i < count; ++i) {
        modulerecord& r = space.modules[i];
        r.name = putstring(out, space.paths[i].text, space.paths[i].length).rva;
        size_t idlength = buildid(r.base, space.codeview + 4);
        if (idlength == 0) continue;
        memcpy(space.codeview, &elfbuildid, 4);
        r.codeview = out.put(space.codeview, 4 + idlength);
    }
    return putlist(out, space.modules, count);
}

}  // namespace

void prepareminidumps() {
    systemrecord& s = space.system;
    s = {};
    s.architecture = amd64;
    s.platform = linuxplatform;
    unsigned a, b, c, d;
    __cpuid(0, a, b, c, d);
    s.vendor[0] = b;
    s.vendor[1] = d;
    s.vendor[2] = c;
    __cpuid(1, a, b, c, d);
    s.versioninformation = a;
    s.features = d;
    unsigned family = (a >> 8) & 0xF, model = (a >> 4) & 0xF;
    if (family == 0xF) family += (a >> 20) & 0xFF;
    if (family >= 6) model += ((a >> 16) & 0xF) << 4;
    s.level = static_cast<uint16_t>(family);
    s.revision = static_cast<uint16_t>(model << 8 | (a & 0xF));
    if (__get_cpuid(0x80000001, &a, &b, &c, &d)) s.amdfeatures = d;
    s.processors = static_cast<uint8_t>(std::clamp(sysconf(_SC_NPROCESSORS_ONLN), 1L, 255L));
    utsname u;
    if (uname(&u) != 0) return;
    const char* p = u.release;
    uint32_t* parts[] = {&s.major, &s.minor, &s.build};
    for (uint32_t* part : parts) {
        for (; *p >= '0' && *p <= '9'; ++p) *part = *part * 10 + static_cast<uint32_t>(*p - '0');
        if (*p == '.') ++p;
    }
    char* k = stpcpy(space.kernel, u.release);
    *k++ = ' ';
    strncpy(k, u.version, sizeof space.kernel - static_cast<size_t>(k - space.kernel) - 1);
}

bool writeminidump(int fd, int sig, const siginfo_t& info, const ucontext_t& fault) {
    dumpfile out(fd);
    streamcount = 0;
    memset(space.directory, 0, sizeof space.directory);
    header head{};
    out.raw(&head, sizeof head);
    out.raw(space.directory, sizeof space.directory);
    mapslength = readwhole("/proc/self/maps", space.maps, mapssize);

    auto sp = static_cast<uintptr_t>(fault.uc_mcontext.gregs[REG_RSP]);
    auto pc = static_cast<uintptr_t>(fault.uc_mcontext.gregs[REG_RIP]);
    fromsignal(space.context, fault);
    location context = out.put(&space.context, sizeof space.context);
    memoryrange ranges[] = {region(out, sp, sp - redzone, sp + stackbytes),
                            region(out, pc, pc - codebytes / 2, pc + codebytes / 2)};
    auto self = static_cast<uint32_t>(gettid());
    addstream(threadliststream, writethreads(out, self, context, ranges[0]));

    exceptionrecord e{};
    e.threadid = self;
    e.code = static_cast<uint32_t>(sig);
    e.flags = static_cast<uint32_t>(info.si_code);
    e.address = reinterpret_cast<uintptr_t>(info.si_addr);
    e.context = context;
    addstream(exceptionstream, out.put(&e, sizeof e));
    addstream(moduleliststream, writemodules(out));
    uint32_t kept = 0;
    for (const memoryrange& r : ranges)
        if (r.data.size > 0) ranges[kept++] = r;
    addstream(memoryliststream, putlist(out, ranges, kept));

    systemrecord system = space.system;
    system.servicepack = putstring(out, space.kernel, strlen(space.kernel)).rva;
    addstream(systeminfostream, out.put(&system, sizeof system));
    miscrecord misc{sizeof misc, processidknown, static_cast<uint32_t>(getpid()), 0, 0, 0};
    addstream(miscinfostream, out.put(&misc, sizeof misc));
    addstream(linuxmaps, out.put(space.maps, mapslength));
    addstream(linuxcmdline, out.putfile("/proc/self/cmdline"));
    addstream(linuxauxv, out.putfile("/proc/self/auxv"));
    addstream(linuxprocstatus, out.putfile("/proc/self/status"));
    addstream(linuxcpuinfo, out.putfile("/proc/cpuinfo"));
    location release = out.putfile("/etc/lsb-release");
    addstream(linuxlsbrelease, release.size ? release : out.putfile("/etc/os-release"));

    timespec now{};
    clock_gettime(CLOCK_REALTIME, &now);
    head = {dumpsignature, dumpversion, static_cast<uint32_t>(streamcount), sizeof head, 0,
            static_cast<uint32_t>(now.tv_sec), 0};
    return out.finish(head);
}
