#pragma once
// The form of the solder mask optimisation, made and laid out in code: the parameter fields, the
// "Main" page with its Yes/No choice rows, the "Advanced" page with the surplus box and the two
// range tables. Its texts translate in the dialog's context (Widget_SolderMaskOpt). The dialog
// connects the controls and runs; this builds the form and reads it into the record.

#include <QList>
#include <memory>
#include <vector>

#include "Korvo_DFM_types.h"
#include "dfm/SolderMaskOptChecks.h"
#include "frame/FieldTable.h"
#include "frame/WidgetCommonExport.h"

class QButtonGroup;
class QCheckBox;
class QGridLayout;
class QGroupBox;
class QObject;
class QTabWidget;
class QWidget;

namespace wc {

class RangeTableBox;

struct WIDGET_COMMON_EXPORT SolderMaskOptForm {
    using Params = Korvo::API::solder_mask_DFM_params;

    // Makes the fields and both pages as children of `dialog`; `handle` gives the unit.
    void setupUi(QWidget* dialog, const void* handle);

    // The fields, the choices and "Advance": whatever makes a shown result stale.
    QList<QObject*> changeSources() const;
    // These and the two range tables: what a parameter set holds, in its fixed order.
    QList<QObject*> parameterWidgets() const;

    // Fields, choices, "Advance" and the range tables into `params`; the range map and the
    // scope are the run's own.
    void fill(Params& params, const void* handle) const;
    // "Apply to" answered "All".
    bool appliesToAll() const;

    // The fields of the first round of checks as typed, in the order the run checks them.
    std::vector<LimitedText> displayChecked() const;
    // The fields whose engine values the second round checks, as typed.
    EngineCheckedTexts engineChecked() const;

    std::unique_ptr<FieldTable<Params>> fields;
    QTabWidget* pages = nullptr;
    QCheckBox* advance = nullptr;
    QGroupBox* advanced_group = nullptr;
    QList<QButtonGroup*> choices;
    RangeTableBox* smd = nullptr;
    RangeTableBox* gas = nullptr;

private:
    QWidget* makeMainPage(QWidget* dialog);
    QGridLayout* makeChoiceRows(QWidget* dialog, QWidget* page);
    QWidget* makeAdvancedPage(QWidget* dialog);
};

}  // namespace wc
