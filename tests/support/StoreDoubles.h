// The stand-in data module and the recording undo manager that every test program shares.
//
// `TStandInStore` owns its objects in z-order and records what is asked of it: limit checks and
// initialisations, link checks, backups, finds, unselections, the files it was told to load and save.
// Its options choose the rest:
// - `Marking`: the module base's selection, a plain list of flagged objects, or a list the test fills;
// - `ReportsLimits`: the union of its objects' limits, or always the empty limits;
// - `TakesAdds`: whether `Add` takes the object (recording the layer) or raises as the base does;
// - `ThrowOnEmpty`: `Empty` and `GetLimits` raise, as a broken store would.
// Its object counters are its own (`CounterValues`), so that a test can set them.
#pragma once

#include "store/DataModBase.h"

#include <QByteArray>
#include <QStringList>

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace vl::test {

// How a stand-in store keeps its selection.
enum class TStandInMarks : std::uint8_t {
    OfTheModule, // the module base's `MarkCase`, with its events and repaints
    Flagged,     // `Marks`: `Select` flags and appends, `UnSelect` unflags and drops
    Listed,      // `Marks` as the test fills it: `UnSelect(nullptr)` empties it, nothing else changes it
};

class TStandInStore : public TvlDataMod {
public:
    explicit TStandInStore(TComponent* AOwner) : TvlDataMod(AOwner) {}

    // Takes `Obj` as the topmost object.
    template <class T>
    T* Hold(std::unique_ptr<T> Obj) {
        T* raw = Obj.get();
        Objects.push_back(std::move(Obj));
        return raw;
    }
    TvlObject* Object(std::size_t I) const { return Objects.at(I).get(); }
    // The selected objects, in order.
    std::vector<TvlObject*> MarkList() const;

    TLimRec GetLimits() override;
    std::int32_t GetCount() override { return static_cast<std::int32_t>(Objects.size()); }
    void AllObjects(const TAllObjectsProc& Action, void* Params) override;
    void CheckLinks(TInvolve Code) override;
    void CheckLimits(TvlObject* O, bool Done) override { LimitChecks.push_back({O, Done}); }
    void InitLimits() override { ++LimitInits; }
    bool Empty() override;
    void Add(TvlObject* AObject, std::int32_t Layer) override;
    void Backup(TBackupMode Mode) override;
    void LoadFromFile(const QString& FileName) override { Loads << FileName; }
    void SaveToFile(const QString& FileName) override { Saves << FileName; }
    std::uint16_t IncCounter(std::uint16_t Counter) override { return ++CounterValues[Counter]; }
    // Its own objects by class number and ID, without a class number map.
    TvlObject* FindObject(TContype Link) override;

    int MarkCount() const override;
    TvlObject* Marked(int I) const override;
    void Select(TvlObject* O) override;
    void UnSelect(TvlObject* O) override;

    // The options.
    TStandInMarks Marking = TStandInMarks::OfTheModule;
    bool ReportsLimits = true;
    bool TakesAdds = false;
    bool ThrowOnEmpty = false;

    // What it holds and what was asked of it.
    std::vector<std::unique_ptr<TvlObject>> Objects;
    std::vector<TvlObject*> Marks;
    std::map<std::uint16_t, std::uint16_t> CounterValues;
    std::vector<std::int32_t> Layers; // of each `Add`
    std::vector<TBackupMode> Backups;
    std::vector<std::pair<TvlObject*, bool>> LimitChecks;
    std::vector<TvlObject*> UnSelects;
    QStringList Loads;
    QStringList Saves;
    int LimitInits = 0;
    int LinkChecks = 0;
    int Finds = 0;
};

// An undo manager that keeps one open snapshot, files every closed one and records the kinds opened;
// given a log, it also writes each call there as text: "init 2", "close", "undo", "redo".
class TRecordingUndo : public TUndoManager {
public:
    TRecordingUndo() = default;
    explicit TRecordingUndo(std::vector<std::string>& Log) : FLog(&Log) {}

    void InitBackup(TBackupMode Mode) override;
    void CloseBackup() override;
    TMemoryStream* CurrentBackup() override { return Open.get(); }
    TBackupMode CurrentBackupMode() const override { return OpenMode; }
    void Undo(TvlDataMod&) override { Note("undo"); }
    void Redo(TvlDataMod&) override { Note("redo"); }

    std::vector<TBackupMode> Modes;
    std::vector<QByteArray> Filed;
    std::unique_ptr<TMemoryStream> Open;
    TBackupMode OpenMode = bkEmpty;

private:
    void Note(const std::string& What) {
        if (FLog) FLog->push_back(What);
    }
    std::vector<std::string>* FLog = nullptr;
};

// A factory of `TRecordingUndo`s, writing to `Log` when given, that points `Made` at the last one made.
TUndoManagerFactory RecordingUndoFactory(TRecordingUndo*& Made, std::vector<std::string>* Log = nullptr);

} // namespace vl::test
