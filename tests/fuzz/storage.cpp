#include "fuzz/storage.hpp"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <set>

#include "orvanth/core_math.h"

namespace orvanth::fuzz {
namespace {

constexpr unsigned char kGuardByte = 0xa7;

double Element(Random& random, int fill) {
    switch (fill) {
        case 0:
            return random.Between(-1, 1);
        case 1:
            return random.Whole(-3, 3);
        case 2:
            return AnyDouble(random);
        case 3:
            return random.Between(-1, 1) * 1e308;
        case 4:
            return random.Between(-1, 1) * 1e-310;
        case 5:
            return 0;
        case 6:
            return random.Chance(97) ? random.Between(-1, 1) : random.Sign() / (random.Chance(50) ? 0.0 : 1.0);
        case 7:
            return 1;
        case 8:
            return random.Sign() * random.PowerOfTen(-300, 300);
        default:
            return random.Sign() * random.PowerOfTen(-8, 8);
    }
}

int Size(Random& random) {
    if (random.Chance(4)) return -random.Whole(1, 2);
    if (random.Chance(90)) return random.Whole(0, 12);
    return random.Chance(95) ? random.Whole(10, 50) : random.Whole(50, 140);
}

int LeadingDimension(Random& random, int rows, bool alwaysGood) {
    const int least = std::max(1, rows);
    if (alwaysGood || random.Chance(88)) return least + (random.Chance(50) ? 0 : random.Whole(0, 5));
    const int bad[] = {least - 1, 0, -1, INT_MIN};
    return random.Of(bad);
}

std::size_t AtLeastZero(std::int64_t value) { return static_cast<std::size_t>(std::max<std::int64_t>(value, 0)); }

}  // namespace

Array::Array(const Parameter& parameter, std::size_t elements, std::size_t elementSize, Random fill)
    : parameter_(&parameter),
      elements_(elements),
      elementSize_(elementSize),
      block_(elements * elementSize + 2 * kGuard * 8, kGuardByte) {
    const int kind = fill.Whole(0, 9);
    for (std::size_t i = 0; i < elements; ++i) {
        if (elementSize == 8)
            Doubles()[i] = Element(fill, kind);
        else
            Ints()[i] = kind < 5 ? 0 : AnyInt(fill);
    }
}

bool Array::GuardsStand() const {
    const auto stands = [](unsigned char byte) { return byte == kGuardByte; };
    return std::all_of(block_.begin(), block_.begin() + kGuard * 8, stands) &&
           std::all_of(block_.end() - kGuard * 8, block_.end(), stands);
}

bool Array::KeptOutside(int offset, int leadingDimension, int rows, int columns) const {
    if (leadingDimension < rows) return true;
    for (std::size_t i = 0; i < elements_; ++i) {
        const auto at = static_cast<std::int64_t>(i) - offset;
        const bool inside = at >= 0 && rows > 0 && at % leadingDimension < rows && at / leadingDimension < columns;
        const std::size_t byte = kGuard * 8 + i * elementSize_;
        if (!inside && std::memcmp(&block_[byte], &given_[byte], elementSize_) != 0) return false;
    }
    return true;
}

std::uint64_t Array::Hash(std::uint64_t hash) const {
    for (unsigned char byte : block_) hash = (hash ^ byte) * 1099511628211u;  // FNV-1a
    return hash;
}

Storage::Storage(const Export& which, const Call& call)
    : export_(which), call_(call), pointers_(which.parameters.size()) {
    Random random(call.words.back());
    shape_ = {Size(random), Size(random), random.Chance(70) ? random.Whole(0, 4) : Size(random)};
    if (random.Chance(25)) shape_.n = shape_.m;
    if (random.Chance(30) && shape_.m < shape_.n) std::swap(shape_.m, shape_.n);
    const bool square = which.Find("vt") >= 0 || which.Find("z") >= 0 || which.Find("upper") >= 0;
    if (!square && random.Whole(0, 1999) == 0) {  // about the largest sizes that the workspace allows
        constexpr int limits[] = {2499, 2500, 3333, 3334, 10000, 10001};
        shape_ = {1, random.Of(limits), 1};
    }
    for (std::size_t i = 0; i < which.parameters.size(); ++i) {
        const Parameter& parameter = which.parameters[i];
        Random own(call.words[i]);
        if (parameter.type == "RandomStreamHandle")
            MakeHandle(call.words[i]);
        else if (parameter.type == "const MatrixDescriptor*")
            pointers_[i] = &views_.back().descriptor;
        else if (parameter.IsPointer() && i + 1 < which.parameters.size() &&
                 which.parameters[i + 1].type == "const MatrixDescriptor*")
            MakeMatrix(static_cast<int>(i), own);
        else if (parameter.IsPointer())
            MakeArray(static_cast<int>(i), own);
    }
    Prepare(random);
    for (Array& array : arrays_) array.Keep();
}

Storage::~Storage() {
    if (ownsHandle_) DeleteRandomStream(handle_);
}

std::int32_t Storage::Int(std::string_view name) const {
    return AsInt(call_.words.at(static_cast<std::size_t>(export_.Find(name))));
}

std::pair<int, int> Storage::MatrixSize(const std::string& name) const {
    const auto [m, n, k] = shape_;
    const std::string exportName = export_.name;
    const bool square = exportName == "EigenSymmetric" || exportName == "SolveTriangularSystem";
    const bool full = exportName == "FullSVD";
    if (name == "a") return {square ? n : m, n};
    if (name == "x") return exportName == "OLS" ? std::pair{n, k} : std::pair{m, n};
    if (name == "b") return {square ? n : std::max(m, n), k};
    if (name == "c") return {m, k};
    if (name == "u") return {m, full ? m : std::min(m, n)};
    if (name == "vt") return {full ? n : std::min(m, n), n};
    return {n, n};  // z
}

std::size_t Storage::ArraySize(const std::string& name) const {
    const auto [m, n, k] = shape_;
    const std::string exportName = export_.name;
    if (name == "lambda") return AtLeastZero(std::min(Int("k"), 4096));
    if (name == "values" && export_.Find("rows") >= 0)
        return Int("rows") > 0 ? AtLeastZero(std::int64_t{Int("rows")} * Int("columns")) : 0;
    if (name == "values") return AtLeastZero(Int("count"));
    if (name == "tau") return AtLeastZero(exportName.starts_with("QR_Q") ? n : std::min(m, n));
    if (name == "s") return AtLeastZero(std::min(m, n));
    if (name == "w" || name == "jpvt" || name == "b") return AtLeastZero(n);
    if (name == "y") return AtLeastZero(m);
    return 1;  // result, complement, mean, variance, and the m of EigenSymmetric
}

void Storage::MakeMatrix(int parameter, Random& random) {
    const Parameter& matrix = export_.parameters[static_cast<std::size_t>(parameter)];
    const std::string& descriptorName = export_.parameters[static_cast<std::size_t>(parameter) + 1].name;
    const auto& views = export_.documented.views;
    const auto told = std::find_if(views.begin(), views.end(),
                                   [&](const DocumentedView& view) { return view.descriptor == descriptorName; });
    const auto [rows, columns] = MatrixSize(matrix.name);
    MatrixDescriptor view{};
    view.leadingDimension = LeadingDimension(random, rows, export_.failure == "None");
    view.offset = !told->honoursOffset ? AnyInt(random) : random.Chance(70) ? 0 : random.Whole(0, 9);
    view.rows = told->readsRows ? rows : AnyInt(random);
    view.columns = told->readsColumns ? columns : AnyInt(random);
    const std::int64_t step = std::max({view.leadingDimension, rows, 1});
    const std::int64_t start = told->honoursOffset ? view.offset : 0;
    const bool empty = rows <= 0 || columns <= 0;
    const std::int64_t elements = empty ? 0 : start + (columns - 1) * step + rows;
    const bool null = matrix.name == "z" && random.Chance(30);
    arrays_.emplace_back(matrix, AtLeastZero(elements), 8, random);
    views_.push_back({static_cast<int>(arrays_.size()) - 1, told->honoursOffset, view, view, rows, columns});
    pointers_[static_cast<std::size_t>(parameter)] = null ? nullptr : arrays_.back().Data();
    // Collinear columns, which random numbers hardly have.
    if (!empty && columns > 1 && view.leadingDimension >= rows && random.Chance(15))
        std::copy_n(arrays_.back().Doubles() + start, rows, arrays_.back().Doubles() + start + step);
}

void Storage::MakeArray(int parameter, Random& random) {
    const Parameter& array = export_.parameters[static_cast<std::size_t>(parameter)];
    const bool ints = array.type.find("int32_t") != std::string::npos;
    const bool null =
        (array.name == "complement" && random.Chance(20)) || (array.name == "values" && random.Chance(5));
    arrays_.emplace_back(array, ArraySize(array.name), ints ? 4u : 8u, random);
    Array& made = arrays_.back();
    pointers_[static_cast<std::size_t>(parameter)] = null ? nullptr : made.Data();
    if (array.name == "lambda") {
        const int kind = random.Whole(0, 5);
        const double common = random.Chance(60) ? std::sqrt(0.5) : random.Unit();
        for (std::size_t i = 0; i < made.Elements(); ++i)
            made.Doubles()[i] = kind <= 2   ? common
                                : kind == 3 ? random.Unit()
                                : kind == 4 ? (random.Chance(80) ? random.Between(-1, 1) : AnyDouble(random))
                                            : (random.Chance(50) ? common : AnyDouble(random));
    }
}

void Storage::MakeHandle(std::uint64_t word) {
    const int kind = static_cast<int>(word % 10);
    if (kind == 0) return;  // no handle
    if (kind == 1) {        // memory that holds no stream
        noStream_.assign(8192, static_cast<unsigned char>(word & 0x100 ? 0x5a : 0));
        handle_ = reinterpret_cast<RandomStreamHandle>(noStream_.data());
        return;
    }
    handle_ = CreateRandomStream(static_cast<std::int32_t>(word >> 32));
    ownsHandle_ = handle_ != 0;
}

// What has to be in the arrays for some exports to have work at all.
void Storage::Prepare(Random& random) {
    const std::string name = export_.name;
    if (views_.empty()) return;
    View& first = views_.front();
    Array& a = arrays_[static_cast<std::size_t>(first.array)];
    if (name.starts_with("QR_Q") && first.rows >= first.columns && random.Chance(60))
        QR(a.Doubles(), &first.descriptor, Find("tau")->Doubles());
    for (std::size_t i = 0; i < a.Elements(); ++i) finite_ = finite_ && std::isfinite(a.Doubles()[i]);
    // The other triangle is not read.
    if (name == "EigenSymmetric" && first.descriptor.leadingDimension >= first.rows && random.Chance(50))
        for (int j = 1; j < first.columns; ++j)
            for (int i = 0; i < j; ++i) a.Doubles()[i + j * first.descriptor.leadingDimension] = std::nan("");
}

Array* Storage::Find(std::string_view name) {
    for (Array& array : arrays_)
        if (array.Of().name == name) return &array;
    return nullptr;
}

// Values that no right answer can have.
std::string Storage::WrongValues(std::int64_t status) {
    const std::string name = export_.name;
    if (status != 0) return {};
    if (Array* s = Find("s"))
        for (std::size_t i = 0; i < s->Elements(); ++i)
            if (s->Doubles()[i] < 0 || (i > 0 && s->Doubles()[i] > s->Doubles()[i - 1]))
                return "singular values that do not descend";
    // With an infinity or a NaN it is LAPACK's answer, whatever that is.
    if (Array* w = Find("w");
        w != nullptr && finite_ && Find("m")->Ints()[0] != static_cast<std::int32_t>(w->Elements()))
        return "m is not n";
    if (Array* jpvt = Find("jpvt"); jpvt != nullptr && shape_.m > 0) {
        const std::set<std::int32_t> numbers(jpvt->Ints(), jpvt->Ints() + jpvt->Elements());
        if (!numbers.empty() && (numbers.size() != jpvt->Elements() || *numbers.begin() != 1 ||
                                 *numbers.rbegin() != static_cast<std::int32_t>(numbers.size())))
            return "jpvt is no permutation";
    }
    if (name == "RandomUniformInteger")
        for (std::size_t i = 0; i < Find("values")->Elements(); ++i)
            if (const std::int32_t value = Find("values")->Ints()[i]; value < 0 || value >= Int("count"))
                return "an integer outside 0 to count - 1";
    return {};
}

void Storage::Inspect(Outcome& outcome) {
    outcome.written = 14695981039346656037u;
    const bool status = export_.result == "int32_t";
    const auto code = static_cast<std::int64_t>(outcome.result);
    // Fewer rows than columns is seen by OLS after its factorisation.
    const bool late = std::string(export_.name) == "OLS" && code == -5 && shape_.m < shape_.n;
    int outputs = 0;
    for (Array& array : arrays_) {
        const std::string& name = array.Of().name;
        if (!array.GuardsStand()) outcome.violation = "written beyond " + name;
        if (array.Of().IsConst() && !array.Unchanged()) outcome.violation = "the input " + name + " was written";
        if (status && code < 0 && !late && !array.Unchanged()) outcome.violation = "rejected, but wrote " + name;
        if (!array.Of().IsConst()) outcome.written = array.Hash(outcome.written);
        if (array.Of().type == "double*" && array.Elements() == 1 && outputs < 2)
            outcome.outputs[outputs++] = array.Doubles()[0];
    }
    for (const View& view : views_) {
        const Array& array = arrays_[static_cast<std::size_t>(view.array)];
        if (std::memcmp(&view.descriptor, &view.given, sizeof view.given) != 0)
            outcome.violation = "the descriptor of " + array.Of().name + " was written";
        // The columns of x from the second on are written one element apart: docs/decisions.md.
        if (export_.Find("tolerance") >= 0 && array.Of().name == "x") continue;
        if (!array.KeptOutside(view.honoursOffset ? view.given.offset : 0, view.given.leadingDimension, view.rows,
                               view.columns))
            outcome.violation = "written outside the view of " + array.Of().name;
    }
    if (const int b = export_.Find("tolerance"); b >= 0 && code > 0 && status)
        for (const char* name : {"b", "x"})
            if (!Find(name)->Unchanged()) outcome.violation = std::string("collinear, but wrote ") + name;
    if (export_.Find("upper") >= 0 && code != 0 && !Find("b")->Unchanged())
        outcome.violation = "not solved, but wrote b";
    if (outcome.exceptionClass.empty() && status)
        if (const std::string wrong = WrongValues(code); !wrong.empty()) outcome.violation = wrong;
    if (std::string(export_.name) == "DeleteRandomStream" && code == 0) ownsHandle_ = false;
}

}  // namespace orvanth::fuzz
